#pragma once

#include <QTimer>
#include <chrono>
#include <functional>
#include <utility>

namespace linux_desktop {

/// A timer that acts once for each time that it is started; started while it runs, it begins anew.
class OneShot final : public QTimer {
 public:
  /// `act` may destroy the timer.
  OneShot(std::chrono::milliseconds after, std::function<void()> act) {
    setSingleShot(true);
    setInterval(after);
    callOnTimeout(this, std::move(act));
  }
};

}  // namespace linux_desktop
