#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"
#include "desktop/linux/wallpaper/XfconfChannel.h"

namespace linux_desktop {

/// xfdesktop 4.12 and later: a picture a monitor and workspace, named by connector and number, in
/// the xfconf channel "xfce4-desktop". A set on every workspace, and a restore, take two rounds of
/// bus calls: one that reads, one of all writes together.
class XfceWallpaper final : public WallpaperAdapter {
 public:
  explicit XfceWallpaper(const WallpaperSurroundings& surroundings);

  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<platform::Dictionary> state(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& state) override;
  void setChanged(std::function<void()> changed) override;
  [[nodiscard]] BackdropManner manner() const override {
    return {.rounding = SizeRounding::DownInDouble, .turnsUpright = true, .decodesAtSize = true};
  }

 private:
  [[nodiscard]] int workspaces() const;
  [[nodiscard]] int presentWorkspace(const QVariantMap& properties) const;
  [[nodiscard]] std::optional<std::string> write(const QVariantMap& now,
                                                 const std::vector<XfconfChannel::Change>& wanted,
                                                 const QDeadlineTimer& deadline);

  XServer* server_;
  XfconfChannel channel_{QStringLiteral("xfce4-desktop")};
};

}  // namespace linux_desktop
