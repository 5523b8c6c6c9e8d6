#pragma once

#include <QDeadlineTimer>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/linux/files/FileDescriptor.h"

class QSocketNotifier;

namespace linux_desktop {

/// The folder for what only running processes of this user share: `$XDG_RUNTIME_DIR`, or, where
/// that is not set or not ours alone, `calmdeck` in the user's cache folder, made with mode 0700.
/// Absent when neither can be had.
[[nodiscard]] std::optional<std::filesystem::path> runtimeFolder();

/// One Calmdeck a user, whatever the number of displays: its settings file has one writer.
///
/// Who holds the lock on `calmdeck.lock` is the first. The kernel gives the lock back when the
/// holder ends, however it ends, so there is nothing stale to judge. The first listens on
/// `calmdeck.socket` beside it and is asked there, by one message of every further start, to show
/// itself; no bus takes part. A plain socket: Qt's own brings a library for the whole of the
/// network into a process that has no other use for it. Needs the application object; main thread
/// only.
class SingleInstance {
 public:
  enum class Claim {
    First,       ///< This process is the program.
    HandedOver,  ///< The first has been told to show itself: end with 0.
    Unanswered,  ///< Another process is the first but hangs; said on standard error: end with 1.
  };

  /// `showRequested` is called out of the event loop, once a further start and after that was
  /// answered.
  explicit SingleInstance(std::function<void()> showRequested,
                          std::optional<std::filesystem::path> folder = runtimeFolder());
  /// Takes the socket's file along.
  ~SingleInstance();
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  /// Returns after `patience` at the latest. Where there is no place for the lock, or further
  /// starts cannot be listened to, that is one line on standard error and the answer is First.
  [[nodiscard]] Claim claim(std::chrono::milliseconds patience = std::chrono::seconds(2));

 private:
  enum class Lock { Taken, Held, Impossible };

  [[nodiscard]] Lock takeLock();
  [[nodiscard]] std::filesystem::path socketFile() const;
  void listen();
  void answer();
  /// Whether who listens has answered in time. What was asked may still be done late.
  [[nodiscard]] bool ask(const QDeadlineTimer& deadline) const;

  std::function<void()> showRequested_;
  std::optional<std::filesystem::path> folder_;
  FileDescriptor lock_;
  FileDescriptor socket_;
  std::unique_ptr<QSocketNotifier> arrivals_;
};

}  // namespace linux_desktop
