#pragma once

#include <QEventLoop>
#include <QObject>
#include <vector>

#include "platform/port/MainLoop.h"

namespace linux_desktop {

/// The main loop on Qt's. Needs the application object and outlives nothing that it was handed:
/// work that was posted or is due later is dropped with it.
class QtMainLoop final : public platform::port::MainLoop {
 public:
  QtMainLoop() = default;
  QtMainLoop(const QtMainLoop&) = delete;
  QtMainLoop& operator=(const QtMainLoop&) = delete;

  void post(Work work) override;
  [[nodiscard]] std::unique_ptr<Timer> startTimer(platform::Duration delay, Work fire) override;
  void run() override;
  void stop() override;
  void sleep(platform::Duration duration) override;
  [[nodiscard]] platform::MonotonicTime now() const override;
  [[nodiscard]] platform::WallTime wallClock() const override;

  /// The program is being ended from outside: every `run` and `sleep` on the stack returns once the
  /// current event is done, and later ones return at once.
  void terminate();

 private:
  class Nested;

  /// Where posted work is delivered; destroying it drops what is still waiting.
  QObject receiver_;
  std::vector<QEventLoop*> runs_;
  std::vector<QEventLoop*> sleeps_;
  bool terminated_ = false;
};

}  // namespace linux_desktop
