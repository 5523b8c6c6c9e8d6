#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/x11/RootBackground.h"
#include "desktop/linux/x11/XScreens.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// A window manager without a desktop: the picture is the root window's background, one for all
/// monitors, left there by a program that has ended. No file names it, so the server keeps a copy
/// of what a state tells, until that is put back or the monitor's next one is told. There is one
/// for the whole session: a program with icons that comes and goes leaves the picture.
class RootWallpaper final : public WallpaperAdapter {
 public:
  /// Both outlive this.
  RootWallpaper(XEvents& events, const XScreens& screens) : events_(events), screens_(screens) {}

  /// Whether the root window is seen where no window covers it: some shells compose another
  /// background over it.
  [[nodiscard]] bool isSeen() const;

  /// Known only where the picture is ours.
  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  Fault show(const Monitor& monitor, const QString& file,
             const platform::Dictionary& options) override;
  Fault restore(const Monitor& monitor, const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override;
  [[nodiscard]] BackdropManner manner() const override { return {.turnsUpright = true}; }

 private:
  /// What was told of a monitor and has not been put back yet.
  struct Told {
    std::int64_t number = 0;
    std::unique_ptr<XPixmap> content;
    bool named = false;
  };

  [[nodiscard]] XServer& server() const { return events_.server(); }
  [[nodiscard]] bool isOurs() const;
  [[nodiscard]] bool draw(const std::function<bool(xcb_pixmap_t)>& paint);

  XEvents& events_;
  const XScreens& screens_;
  // By the monitor's name.
  std::map<QString, Told> told_;
  std::map<QString, QString> files_;
  std::int64_t lastNumber_ = 0;
  /// The one that we set last.
  xcb_pixmap_t picture_ = XCB_NONE;
  std::unique_ptr<XEvents::Watch> watch_;
};

}  // namespace linux_desktop
