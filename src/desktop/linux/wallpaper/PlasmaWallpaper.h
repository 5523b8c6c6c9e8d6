#pragma once

#include <QJsonObject>
#include <QTimer>
#include <functional>
#include <optional>
#include <string>

#include "desktop/linux/files/FileWatch.h"
#include "desktop/linux/wallpaper/PlasmaDesktops.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

/// Plasma: a wallpaper plugin a screen, with settings of its own, reached through the scripting of
/// the shell. The shell tells nobody of a change, but notes each in a file, up to Plasma 5 also
/// which picture of a slide show is on. In Plasma 6 the next slide is seen with the next change of
/// anything else in there.
class PlasmaWallpaper final : public WallpaperAdapter {
 public:
  PlasmaWallpaper();

  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file,
                                  const platform::Dictionary& options) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override;

  [[nodiscard]] BackdropManner manner() const override {
    return {.turnsUpright = true, .centersTiles = true};
  }

 private:
  [[nodiscard]] std::optional<std::string> write(const QJsonObject& wanted,
                                                 const QDeadlineTimer& deadline);

  PlasmaDesktops desktops_;
  std::function<void()> changed_;
  /// Has more in it than pictures, and is told of by several events at a time.
  std::optional<FileWatch> file_;
  QTimer looking_;
};

}  // namespace linux_desktop
