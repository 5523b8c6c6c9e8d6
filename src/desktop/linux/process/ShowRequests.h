#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <filesystem>
#include <functional>
#include <memory>

#include "desktop/linux/files/FileDescriptor.h"

class QSocketNotifier;

namespace linux_desktop {

/// Further starts of the program ask the first to show itself, by a line over a socket file.
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
  void acceptAll();

  std::filesystem::path path_;
  std::function<void()> requested_;
  QObject callers_;  // their parent
  FileDescriptor socket_;
  std::unique_ptr<QSocketNotifier> arrivals_;
};

}  // namespace linux_desktop
