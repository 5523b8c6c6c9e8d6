#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "desktop/linux/files/FileDescriptor.h"
#include "desktop/linux/process/RuntimeFolder.h"
#include "desktop/linux/process/ShowRequests.h"

namespace linux_desktop {

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
