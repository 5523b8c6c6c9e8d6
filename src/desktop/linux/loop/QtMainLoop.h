#pragma once

#include <QEventLoop>
#include <QObject>
#include <vector>

#include "platform/port/Program.h"

namespace linux_desktop {

/// The main loop on Qt's. Needs the application object. Work that was posted or is due later is
/// dropped with it.
class QtMainLoop final : public platform::port::MainLoop {
 public:
  void post(Work work) override;
  [[nodiscard]] std::unique_ptr<Timer> startTimer(platform::Duration delay, Work fire) override;
  void run() override;
  void stop() override;
  void sleep(platform::Duration duration) override;
  [[nodiscard]] platform::MonotonicTime now() const override;
  [[nodiscard]] platform::WallTime wallClock() const override;

  /// Ends sleeps early too: the program may be ended from outside, by a signal.
  void terminate() override;

 private:
  /// Where posted work is delivered; destroying it drops what is still waiting.
  QObject receiver_;
  std::vector<QEventLoop*> runs_;
  std::vector<QEventLoop*> sleeps_;
  bool terminated_ = false;
};

}  // namespace linux_desktop
