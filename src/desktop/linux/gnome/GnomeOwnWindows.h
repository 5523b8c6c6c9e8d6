#pragma once

#include <memory>
#include <vector>

#include "desktop/linux/gnome/GnomeShell.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

/// What our extension does for our own windows on Wayland, where the shell alone places windows and
/// knows of more than each window's keyboard: a press on a cover or on the panel takes that from
/// nobody, and yet closes the popover.
class GnomeOwnWindows final : public OwnWindows {
 public:
  /// `shell` outlives this.
  explicit GnomeOwnWindows(GnomeShell& shell);

  /// At the button on the shell's panel, wherever `place` is.
  [[nodiscard]] std::unique_ptr<Popover> makePopover(
      QWindow& window, const QRect& place, const std::function<void()>& dismissed) override;
  [[nodiscard]] bool mayBeRound() override { return true; }
  [[nodiscard]] std::unique_ptr<PressWatch> watchPresses(QWindow& window,
                                                         const Pressed& pressed) override;

 private:
  class Watch;
  void pressed(const OutsidePress& press) const;

  GnomeShell& shell_;
  std::vector<Watch*> watches_;
  std::unique_ptr<BusSignal> onCovers_;
  std::unique_ptr<BusSignal> onOthers_;
};

}  // namespace linux_desktop
