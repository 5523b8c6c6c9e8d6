#include "desktop/linux/ui/OutsideActs.h"

#include <utility>

namespace linux_desktop {

OutsideActs::OutsideActs(Clock clock, std::function<void()> acted)
    : clock_(std::move(clock)),
      acted_(std::move(acted)),
      patience_(kItemPatience, [this] { report(); }) {
  patience_.setTimerType(Qt::PreciseTimer);
}

void OutsideActs::pressedOnPanel() {
  // The item's word may overtake the press: they come by different roads.
  if (!patience_.isActive() && !within(kItemPatience)) patience_.start();
}

void OutsideActs::lostKeyboard() {
  if (!patience_.isActive() && !within(kSameAct)) report();
}

void OutsideActs::itemActivated() {
  patience_.stop();
  lastAct_ = clock_();
}

void OutsideActs::report() {
  patience_.stop();
  lastAct_ = clock_();
  const auto acted = acted_;
  acted();
}

bool OutsideActs::within(std::chrono::milliseconds span) const {
  return lastAct_ && clock_() - *lastAct_ < span;
}

}  // namespace linux_desktop
