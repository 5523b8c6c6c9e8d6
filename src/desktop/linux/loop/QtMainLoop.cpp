#include "desktop/linux/loop/QtMainLoop.h"

#include <QScopeGuard>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "platform/foundation/Process.h"

namespace linux_desktop {
namespace {

std::chrono::milliseconds roundedUp(platform::Duration delay) {
  return std::max(std::chrono::ceil<std::chrono::milliseconds>(delay),
                  std::chrono::milliseconds::zero());
}

void startOnce(QTimer& timer, platform::Duration delay) {
  timer.setSingleShot(true);
  timer.setTimerType(Qt::PreciseTimer);
  timer.start(roundedUp(delay));
}

class OneShot final : public platform::port::MainLoop::Timer {
 public:
  OneShot(platform::Duration delay, platform::port::MainLoop::Work fire) {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, std::move(fire));
    startOnce(timer_, delay);
  }

 private:
  QTimer timer_;
};

}  // namespace

void QtMainLoop::post(Work work) {
  QMetaObject::invokeMethod(
      &receiver_, [work = std::move(work)] { work(); }, Qt::QueuedConnection);
}

std::unique_ptr<platform::port::MainLoop::Timer> QtMainLoop::startTimer(platform::Duration delay,
                                                                        Work fire) {
  return std::make_unique<OneShot>(delay, std::move(fire));
}

void QtMainLoop::run() {
  if (terminated_) return;
  QEventLoop loop;
  runs_.push_back(&loop);
  const auto ended = qScopeGuard([this] { runs_.pop_back(); });
  loop.exec();
}

void QtMainLoop::stop() {
  if (terminated_) return;
  if (runs_.empty()) platform::programmingError("MainLoop::stop without a run to end");
  runs_.back()->quit();
}

void QtMainLoop::sleep(platform::Duration duration) {
  const platform::MonotonicTime end = now() + duration;
  QEventLoop loop;
  sleeps_.push_back(&loop);
  const auto ended = qScopeGuard([this] { sleeps_.pop_back(); });
  QTimer wakeUp;
  QObject::connect(&wakeUp, &QTimer::timeout, &loop, &QEventLoop::quit);
  // A second round only if the timer was early by the fraction that the two clocks are apart.
  while (!terminated_ && now() < end) {
    startOnce(wakeUp, end - now());
    loop.exec();
  }
}

platform::MonotonicTime QtMainLoop::now() const {
  return std::chrono::steady_clock::now();
}

platform::WallTime QtMainLoop::wallClock() const {
  return std::chrono::system_clock::now();
}

void QtMainLoop::terminate() {
  terminated_ = true;
  for (QEventLoop* loop : runs_) loop->quit();
  for (QEventLoop* loop : sleeps_) loop->quit();
}

}  // namespace linux_desktop
