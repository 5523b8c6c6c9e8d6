#pragma once

#include <QTimer>
#include <functional>
#include <vector>

#include "desktop/linux/wallpaper/Backdrop.h"
#include "desktop/linux/xserver/XEvents.h"
#include "platform/port/Screens.h"

namespace linux_desktop {

/// The monitors of an X server, as RandR lists them. Points are device pixels here, so the scale is
/// always 1. The primary monitor comes first; the rest keep the server's order.
class XScreens final : public platform::port::Screens {
 public:
  /// `events` outlives this.
  explicit XScreens(XEvents& events);

  void setClient(platform::port::ScreensClient* client) override { client_ = client; }
  [[nodiscard]] std::vector<platform::port::ScreenInfo> screens() const override;

  /// The same screens in the same order, in the server's own coordinates.
  [[nodiscard]] const std::vector<Monitor>& monitors() const { return monitors_; }
  /// Null when no monitor has that name.
  [[nodiscard]] const Monitor* monitorNamed(const platform::port::ScreenId& id) const;
  /// From the layer's coordinates, which have their origin at the bottom left of the first screen,
  /// to the server's.
  [[nodiscard]] QRect toPixels(const platform::NSRect& frame) const;

 private:
  void watchRandr();
  [[nodiscard]] std::vector<Monitor> read() const;
  void settled();

  XEvents& events_;
  platform::port::ScreensClient* client_ = nullptr;
  std::vector<Monitor> monitors_;
  std::vector<std::unique_ptr<XEvents::Watch>> watches_;
  /// A change arrives as several events, with states between them that nobody sees.
  QTimer settling_;
};

}  // namespace linux_desktop
