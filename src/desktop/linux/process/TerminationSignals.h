#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <array>
#include <csignal>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/linux/files/FileDescriptor.h"

namespace linux_desktop {

/// What ends the program from outside: SIGTERM, SIGINT, SIGHUP, and the session manager's word that
/// the session is over (which Qt delivers as a Quit event to the application object). While it
/// lives, SIGPIPE is ignored. One at a time, after the application object and on its thread.
///
/// A SIGHUP that was ignored when the program started stays so: whoever used nohup meant it.
class TerminationSignals final : public QObject {
 public:
  /// `end` is called once, on the main thread, out of the innermost event loop that handles socket
  /// notifiers; a signal that comes while no loop runs is kept until one does. `end` may end the
  /// process.
  explicit TerminationSignals(std::function<void()> end);
  /// Gives the signals their earlier meaning back.
  ~TerminationSignals() override;

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  static constexpr std::array kEndingSignals{SIGTERM, SIGINT, SIGHUP};

  void handle(int number, const struct sigaction& action);
  void wakeUp();
  void endOnce();

  struct Earlier {
    int number;
    struct sigaction action;
  };

  std::function<void()> end_;
  FileDescriptor readingEnd_;
  FileDescriptor writingEnd_;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::vector<Earlier> earlier_;
};

}  // namespace linux_desktop
