#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <map>
#include <memory>

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
  using Action = void (*)(int number);

  void take(int number, Action action);
  void wakeUp();
  void endOnce();

  std::function<void()> end_;
  FileDescriptor readingEnd_;
  FileDescriptor writingEnd_;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::map<int, Action> earlier_;
};

}  // namespace linux_desktop
