#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/wallpaper/RootBackground.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

/// What has been told of the bare root window and not yet been put back, and what has been set. One
/// adapter hands it to the next: a program with icons that comes and goes leaves the picture.
struct RootWallpaperMemory {
  struct Told {
    std::int64_t number = 0;
    std::unique_ptr<XPixmap> content;
    bool named = false;
  };
  // By the monitor's name.
  std::map<QString, Told> told;
  std::int64_t lastNumber = 0;
  std::map<QString, QString> files;
  xcb_pixmap_t picture = XCB_NONE;
};

/// A window manager without a desktop: the picture is the root window's background, one for all
/// monitors, left there by a program that has ended. No file names it, so the server keeps a copy
/// of what a state tells, until that is put back or the monitor's next one is told.
class RootWallpaper final : public WallpaperAdapter {
 public:
  explicit RootWallpaper(WallpaperSurroundings surroundings);

  /// Whether nothing covers the root window, neither a window nor what a shell composes. To be
  /// asked last.
  [[nodiscard]] static bool runs(const WallpaperSurroundings& surroundings);

  /// Known only where the picture is ours.
  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file,
                                  const platform::Dictionary& options) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override;
  [[nodiscard]] BackdropManner manner() const override { return {.turnsUpright = true}; }

 private:
  [[nodiscard]] XServer& server() const { return surroundings_.x11->server(); }
  [[nodiscard]] RootWallpaperMemory& memory() const { return *surroundings_.root; }
  [[nodiscard]] bool isOurs() const;
  [[nodiscard]] bool draw(const std::function<bool(xcb_pixmap_t)>& paint);

  WallpaperSurroundings surroundings_;
  std::unique_ptr<XEvents::Watch> watch_;
};

}  // namespace linux_desktop
