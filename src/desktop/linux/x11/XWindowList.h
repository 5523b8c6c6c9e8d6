#pragma once

#include "desktop/linux/x11/MonitorPictures.h"
#include "desktop/linux/x11/XScreens.h"
#include "platform/port/WindowList.h"

namespace linux_desktop {

/// The list holds the desktop pictures of the screens and no other windows: nobody asks for those.
class XWindowList final : public platform::port::WindowList {
 public:
  /// Both outlive this.
  XWindowList(const XScreens& screens, MonitorPictures& pictures)
      : screens_(screens), pictures_(pictures) {}

  [[nodiscard]] std::optional<std::vector<platform::Dictionary>> windowsOnScreen() const override;
  /// A DesktopCapture.
  [[nodiscard]] std::shared_ptr<const platform::port::Capture> capture(
      std::uint32_t windowNumber) override;

 private:
  const XScreens& screens_;
  MonitorPictures& pictures_;
};

}  // namespace linux_desktop
