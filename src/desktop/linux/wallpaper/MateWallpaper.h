#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

/// MATE, whichever of its programs draws the desktop: one picture for all monitors and workspaces,
/// in GSettings. Its style always is one that shows a picture; without one there is no file.
class MateWallpaper final : public WallpaperAdapter {
 public:
  /// Null where MATE's settings cannot be reached.
  [[nodiscard]] static std::shared_ptr<WallpaperAdapter> make(const WallpaperSurroundings&);

  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file,
                                  const platform::Dictionary& options) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override;

  [[nodiscard]] bool tilesFromDesktopOrigin() const override { return true; }
  [[nodiscard]] bool spansByZooming() const override { return false; }
  [[nodiscard]] BackdropManner manner() const override {
    return {
        .rounding = SizeRounding::Nearest, .turnsUpright = true, .cutsTilesToLastMonitor = true};
  }

 private:
  explicit MateWallpaper(std::unique_ptr<GuardedSettings> settings)
      : settings_(std::move(settings)) {}

  std::unique_ptr<GuardedSettings> settings_;
};

}  // namespace linux_desktop
