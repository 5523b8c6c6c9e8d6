#pragma once

#include <QObject>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "desktop/linux/bus/XfconfChannel.h"
#include "desktop/linux/wallpaper/Backdrop.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

/// What xfdesktop makes of the properties whose names begin with `prefix` (that of one monitor and
/// workspace, with the slash). None where no picture was ever chosen: the program then has one of
/// its own that no property names.
[[nodiscard]] std::optional<Backdrop> xfceBackdrop(const QVariantMap& properties,
                                                   const QString& prefix);

/// xfdesktop 4.12 and later: a picture a monitor and workspace, named by connector and number, in
/// the xfconf channel "xfce4-desktop". A turn of the event loop takes one bus call that reads and,
/// for each monitor that is set or restored, a round of all writes together.
class XfceWallpaper final : public WallpaperAdapter {
 public:
  explicit XfceWallpaper(const WallpaperSurroundings& surroundings);

  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  std::optional<platform::Dictionary> options(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file,
                                  const platform::Dictionary& options) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override;
  [[nodiscard]] BackdropManner manner() const override {
    return {.rounding = SizeRounding::DownInDouble, .turnsUpright = true};
  }

 private:
  /// What one turn of the event loop needs, asked for once.
  struct Seen {
    QVariantMap properties;
    /// The present one is the one whose picture is shown.
    Workspaces workspaces;
  };

  /// Null when the settings service does not answer.
  [[nodiscard]] const Seen* look(const QDeadlineTimer& deadline);
  [[nodiscard]] static platform::Dictionary valuesOf(const Seen& seen, const Monitor& monitor,
                                                     std::span<const QLatin1String> keys);
  [[nodiscard]] std::optional<std::string> write(const Seen& now,
                                                 const std::vector<XfconfChannel::Change>& wanted,
                                                 const QDeadlineTimer& deadline);

  DesktopFacts& facts_;
  XfconfChannel channel_{QStringLiteral("xfce4-desktop")};
  std::optional<Seen> seen_;
  QObject turn_;
};

}  // namespace linux_desktop
