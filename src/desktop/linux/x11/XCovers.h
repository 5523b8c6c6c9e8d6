#pragma once

#include <memory>

#include "desktop/linux/windowsystem/CoverWindows.h"
#include "desktop/linux/x11/CoverKeeper.h"
#include "desktop/linux/x11/XScreens.h"

namespace linux_desktop {

/// Covers of an X desktop.
class XCovers final : public CoverWindows {
 public:
  /// Both outlive this.
  XCovers(XEvents& events, const XScreens& screens)
      : events_(events), screens_(screens), keeper_(events) {}

  [[nodiscard]] std::unique_ptr<platform::port::WindowPeer> createCover(
      platform::NSWindow& window, platform::port::WindowClient& client) override;

 private:
  XEvents& events_;
  const XScreens& screens_;
  CoverKeeper keeper_;
};

}  // namespace linux_desktop
