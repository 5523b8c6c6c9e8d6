#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "desktop/linux/x11/MonitorPictures.h"
#include "desktop/linux/x11/XScreens.h"
#include "platform/port/Screens.h"

namespace linux_desktop {

/// The desktop's picture on one monitor, taken when it is first to be shown: the X server works at
/// it for some milliseconds, for which nothing else that a turn of the event loop does has to wait.
class DesktopCapture final : public platform::port::Capture {
 public:
  /// `pictures` is there at the first `picture`.
  DesktopCapture(MonitorPictures& pictures, Monitor monitor)
      : pictures_(pictures), monitor_(std::move(monitor)) {}

  [[nodiscard]] std::size_t pixelWidth() const override {
    return static_cast<std::size_t>(monitor_.pixels.width());
  }
  [[nodiscard]] std::size_t pixelHeight() const override {
    return static_cast<std::size_t>(monitor_.pixels.height());
  }
  /// The same each time; null where it could not be had.
  [[nodiscard]] std::shared_ptr<const XPicture> picture() const {
    if (!picture_) picture_ = pictures_.picture(monitor_);
    return *picture_;
  }

 private:
  MonitorPictures& pictures_;
  Monitor monitor_;
  mutable std::optional<std::shared_ptr<const XPicture>> picture_;
};

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
