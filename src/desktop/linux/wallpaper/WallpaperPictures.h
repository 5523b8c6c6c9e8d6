#pragma once

#include <QTimer>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "desktop/linux/wallpaper/BackdropSource.h"
#include "desktop/linux/wallpaper/WallpaperChoice.h"
#include "platform/port/DesktopPictures.h"

namespace linux_desktop {

/// The desktop's pictures, over the adapter of whichever desktop runs.
class WallpaperPictures final : public platform::port::DesktopPictures, public BackdropSource {
 public:
  /// `monitors` tells those that are connected now; their names are the screens' ids. `x11` is null
  /// where the interface is not on an X server, and outlives this otherwise. Nobody is asked
  /// anything yet.
  WallpaperPictures(std::function<std::vector<Monitor>()> monitors, XEvents* x11);

  [[nodiscard]] std::optional<std::string> path(
      const platform::port::ScreenId& screen) const override;
  [[nodiscard]] std::optional<platform::Dictionary> options(
      const platform::port::ScreenId& screen) const override;
  [[nodiscard]] std::optional<std::string> set(const std::string& path,
                                               const platform::port::ScreenId& screen,
                                               const platform::Dictionary& options) override;

  [[nodiscard]] std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  [[nodiscard]] QImage render(const Backdrop& backdrop, const Monitor& monitor) override;
  void setChanged(std::function<void()> changed) override;

 private:
  /// What was last told of a screen, and what that stands for.
  struct Told {
    std::string path;
    Monitor monitor;
    const WallpaperRow* desktop = nullptr;
    platform::Dictionary state;
    /// The options that had to become others since, so that a picture would be seen.
    platform::Dictionary changed;
  };

  [[nodiscard]] std::optional<Monitor> monitorNamed(const platform::port::ScreenId& screen) const;
  [[nodiscard]] std::optional<std::string> show(const std::string& path,
                                                const platform::port::ScreenId& screen,
                                                const platform::Dictionary& options);
  [[nodiscard]] std::optional<std::string> putBack(const Told& told,
                                                   const platform::Dictionary& options);

  std::function<std::vector<Monitor>()> monitors_;
  /// Asking chooses an adapter and remembers what was told, neither of which shows.
  mutable WallpaperChoice choice_;
  mutable std::map<platform::port::ScreenId, Told> told_;
  std::function<void()> changed_;
  /// Gathers the changes that follow each other at once.
  QTimer gathering_;
};

}  // namespace linux_desktop
