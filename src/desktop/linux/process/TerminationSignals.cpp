#include "desktop/linux/process/TerminationSignals.h"

#include <fcntl.h>

#include <QCoreApplication>
#include <QEvent>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <utility>

#include "desktop/linux/log/Log.h"
#include "platform/foundation/Process.h"

namespace linux_desktop {
namespace {

// The pipe that a signal handler, which has no other way to reach the object, writes to.
std::atomic<int> wakeUpPipe{-1};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void noteSignal(int number) {
  const int keptError = errno;
  const char byte = static_cast<char>(number);
  // A full pipe already holds a wake-up.
  [[maybe_unused]] const ssize_t count = ::write(wakeUpPipe, &byte, 1);
  errno = keptError;
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> end) : end_(std::move(end)) {
  std::array<int, 2> ends{};
  if (wakeUpPipe >= 0) platform::programmingError("the termination signals are handled already");
  if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    platform::programmingError("no pipe for the termination signals");
  }
  readingEnd_ = FileDescriptor(ends[0]);
  writingEnd_ = FileDescriptor(ends[1]);
  wakeUpPipe = ends[1];
  notifier_ = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
  connect(notifier_.get(), &QSocketNotifier::activated, this, &TerminationSignals::wakeUp);
  QCoreApplication::instance()->installEventFilter(this);

  for (const int number : {SIGTERM, SIGINT, SIGHUP}) take(number, &noteSignal);
  take(SIGPIPE, SIG_IGN);
}

TerminationSignals::~TerminationSignals() {
  for (const auto& [number, action] : earlier_) std::signal(number, action);
  wakeUpPipe = -1;
}

void TerminationSignals::take(int number, Action action) {
  const Action earlier = std::signal(number, action);
  if (number == SIGHUP && earlier == SIG_IGN) {
    std::signal(number, SIG_IGN);
    return;
  }
  earlier_.emplace(number, earlier);

  // Whoever started us may have left them blocked.
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, number);
  ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

void TerminationSignals::wakeUp() {
  char number = 0;
  if (::read(readingEnd_.get(), &number, 1) != 1) return;
  qCDebug(lcProcess, "Ended by signal %d", number);
  endOnce();
}

bool TerminationSignals::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Quit && watched == QCoreApplication::instance()) endOnce();
  return QObject::eventFilter(watched, event);
}

void TerminationSignals::endOnce() {
  if (const auto end = std::exchange(end_, nullptr)) end();
}

}  // namespace linux_desktop
