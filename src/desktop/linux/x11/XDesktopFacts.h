#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/wallpaper/DesktopFacts.h"
#include "desktop/linux/x11/RootWallpaper.h"
#include "desktop/linux/x11/XScreens.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// What an X server tells of the desktop that runs on it.
class XDesktopFacts final : public DesktopFacts {
 public:
  /// Both outlive this.
  XDesktopFacts(XEvents& events, const XScreens& screens);

  [[nodiscard]] DesktopWindow desktopWindow() override;
  [[nodiscard]] std::optional<Workspaces> workspaces() override;
  [[nodiscard]] std::vector<QString> outputsInUse() override;
  [[nodiscard]] std::shared_ptr<WallpaperAdapter> bareDesktop() override;

 private:
  XEvents& events_;
  const XScreens& screens_;
  std::shared_ptr<RootWallpaper> root_;
};

}  // namespace linux_desktop
