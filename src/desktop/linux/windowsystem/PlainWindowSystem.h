#pragma once

#include "desktop/linux/windowsystem/QtScreens.h"
#include "desktop/linux/windowsystem/WindowSystem.h"

namespace linux_desktop {

/// A window system that we know nothing of but the screens. Says so in one line when it is made.
class PlainWindowSystem final : public WindowSystem {
 public:
  PlainWindowSystem();

  platform::port::Screens& screens() override { return screens_; }

 private:
  QtScreens screens_;
};

}  // namespace linux_desktop
