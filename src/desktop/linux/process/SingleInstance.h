#pragma once

#include <QDeadlineTimer>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/files/FileDescriptor.h"

class QSocketNotifier;

namespace linux_desktop {

/// The folder for what only running processes of this user share: `$XDG_RUNTIME_DIR`, or, where
/// that is not set or not ours alone, `calmdeck` in the user's cache folder, made with mode 0700.
/// Absent when neither can be had.
[[nodiscard]] std::optional<std::filesystem::path> runtimeFolder();

/// Further starts of the program ask the first to show itself, by a message to a socket file.
///
/// A plain socket: Qt's own brings a library for the whole of the network into a process that has
/// no other use for it. Main thread only; needs the application object.
class ShowRequests {
 public:
  /// `requested` is called out of the event loop, once a request and after it was answered. Takes
  /// the place of whatever file is at `socket`. Where that cannot be listened at, that is one line
  /// on standard error. The file goes with this object.
  ShowRequests(std::filesystem::path socket, std::function<void()> requested);
  ~ShowRequests();
  ShowRequests(const ShowRequests&) = delete;
  ShowRequests& operator=(const ShowRequests&) = delete;

  /// Whether who listens at `socket` has answered in time. What was asked may still be done late.
  [[nodiscard]] static bool ask(const std::filesystem::path& socket,
                                const QDeadlineTimer& deadline);

 private:
  void answer();

  std::filesystem::path path_;
  std::function<void()> requested_;
  FileDescriptor socket_;
  std::unique_ptr<QSocketNotifier> arrivals_;
};

/// One Calmdeck a user, whatever the number of displays: its settings file has one writer.
///
/// Who holds the lock on `calmdeck.lock` is the first. The kernel gives the lock back when the
/// holder ends, however it ends, so there is nothing stale to judge. The first listens on
/// `calmdeck.socket` beside it and is told there of every further start; no bus takes part.
/// Needs the application object; main thread only.
class SingleInstance {
 public:
  enum class Claim {
    First,       ///< This process is the program.
    HandedOver,  ///< The first has been told to show itself: end with 0.
    Unanswered,  ///< Another process is the first but hangs; said on standard error: end with 1.
  };

  /// `showRequested` is called out of the event loop when the program was started again.
  explicit SingleInstance(std::function<void()> showRequested,
                          std::optional<std::filesystem::path> folder = runtimeFolder());

  /// Returns after `patience` at the latest. Where there is no place for the lock, or further
  /// starts cannot be listened to, that is one line on standard error and the answer is First.
  [[nodiscard]] Claim claim(std::chrono::milliseconds patience = std::chrono::seconds(2));

 private:
  enum class Lock { Taken, Held, Impossible };

  [[nodiscard]] Lock takeLock();

  std::function<void()> showRequested_;
  std::optional<std::filesystem::path> folder_;
  FileDescriptor lock_;
  std::optional<ShowRequests> requests_;
};

}  // namespace linux_desktop
