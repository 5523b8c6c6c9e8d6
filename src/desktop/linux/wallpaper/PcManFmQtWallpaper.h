#pragma once

#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/wallpaper/FileWatch.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

/// LXQt's desktop: one picture for all monitors. It is told over the session bus; what it has been
/// told stands in its settings file, which it writes as a whole before it answers.
class PcManFmQtWallpaper final : public WallpaperAdapter {
 public:
  explicit PcManFmQtWallpaper(const WallpaperSurroundings& surroundings);

  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<platform::Dictionary> state(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& state) override;
  void setChanged(std::function<void()> changed) override;
  [[nodiscard]] bool tilesFromDesktopOrigin() const override { return true; }
  [[nodiscard]] BackdropManner manner() const override;

 private:
  struct Settings;
  [[nodiscard]] Settings read() const;
  /// What tells the desktop to show `file`. An empty mode leaves the mode as it is.
  [[nodiscard]] QDBusMessage order(const QString& file, const QString& mode) const;
  [[nodiscard]] std::optional<std::string> tell(const QString& file, const QString& mode,
                                                const QDeadlineTimer& deadline);
  [[nodiscard]] std::optional<std::string> putBackFile(const std::optional<QByteArray>& old) const;

  QString name_;  ///< of the settings file, below a configuration folder
  QString file_;
  BusPeer peer_{QStringLiteral("org.pcmanfm.PCManFM")};
  /// What the file holds, beside the picture, since we had a picture shown.
  std::optional<QByteArray> ours_;
  /// The picture that is shown although the settings say colours only.
  QString inspiteOfMode_;
  std::unique_ptr<FileWatch> watch_;
};

}  // namespace linux_desktop
