#pragma once

#include <functional>
#include <optional>

#include "desktop/linux/loop/OneShot.h"
#include "platform/port/Program.h"

namespace linux_desktop {

/// Makes of the signs that the user has turned away from a popover one report for each act.
///
/// A press elsewhere and the loss of the keyboard that follows it are one act. A press on a panel
/// may be a click on the popover's own status item, which answers for itself: that press waits for
/// the item's word before it counts. The item's menu is somewhere else.
class OutsideActs {
 public:
  /// How long a panel may take to pass a click on.
  static constexpr std::chrono::milliseconds kItemPatience{300};
  /// How long after a press its loss of the keyboard may come; Qt alone waits 400 ms for it.
  static constexpr std::chrono::milliseconds kSameAct{700};

  using Clock = std::function<platform::MonotonicTime()>;

  /// `acted` may destroy this object.
  OutsideActs(Clock clock, std::function<void()> acted);

  void pressedElsewhere() { report(); }
  void pressedOnPanel();
  void lostKeyboard();
  void itemActivated();
  void menuOpens() { report(); }

 private:
  void report();
  [[nodiscard]] bool within(std::chrono::milliseconds span) const;

  Clock clock_;
  std::function<void()> acted_;
  OneShot patience_;
  /// The last act, reported or of the status item.
  std::optional<platform::MonotonicTime> lastAct_;
};

}  // namespace linux_desktop
