#pragma once

#include <memory>
#include <vector>

#include "desktop/linux/gnome/GnomeShell.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

/// What our extension does for our own windows on Wayland, where the shell alone knows of more than
/// each window's keyboard: a press on a cover takes that from nobody, and yet closes the panel.
class GnomeOwnWindows final : public OwnWindows {
 public:
  /// `shell` outlives this.
  explicit GnomeOwnWindows(GnomeShell& shell);
  ~GnomeOwnWindows() override;

  [[nodiscard]] std::unique_ptr<PressWatch> watchPresses(QWindow& window,
                                                         const Pressed& pressed) override;

 private:
  class Watch;
  void pressed(const OutsidePress& press) const;

  GnomeShell& shell_;
  std::vector<Watch*> watches_;
};

}  // namespace linux_desktop
