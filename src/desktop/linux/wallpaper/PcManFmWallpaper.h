#pragma once

#include <QTimer>
#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/files/FileWatch.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

/// LXDE's desktop: a file of settings a monitor, by its number. The first monitor follows an order
/// at once; the others are drawn from their files when the desktop starts, so with several monitors
/// it is started again. Nobody waits for either: a desktop that is busy or hangs follows when it
/// goes on.
class PcManFmWallpaper final : public WallpaperAdapter {
 public:
  explicit PcManFmWallpaper(const WallpaperSurroundings& surroundings);

  /// Whether pcmanfm draws the desktop, or is about to because of us.
  [[nodiscard]] static bool runs(const WallpaperSurroundings& surroundings);

  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  std::optional<platform::Dictionary> options(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file,
                                  const platform::Dictionary& options) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override;
  [[nodiscard]] BackdropManner manner() const override {
    return {.rounding = SizeRounding::DownInFloat};
  }

 private:
  /// Of the monitor's settings; none for a monitor that pcmanfm does not have.
  [[nodiscard]] std::optional<QString> nameOf(const Monitor& monitor) const;
  [[nodiscard]] QString pathOf(const QString& name) const;
  /// The user's settings, or the system's where the user has none.
  [[nodiscard]] static QByteArray textInForce(const QString& name);
  /// What the monitor is to show from now on.
  [[nodiscard]] std::optional<std::string> apply(const QString& path,
                                                 const std::optional<QByteArray>& text);
  /// Whether an order to the running program has the same effect as a new start.
  [[nodiscard]] bool followsOrders(const std::optional<QByteArray>& before,
                                   const std::optional<QByteArray>& text) const;
  /// The program saves its settings some time after an order, in its own words.
  void keepAgainstSaving(const QString& path, const QByteArray& text);

  DesktopFacts& facts_;
  QString profile_;
  std::unique_ptr<FileWatch> watch_;
  std::unique_ptr<FileWatch> saving_;
  QTimer savingEnds_;
};

}  // namespace linux_desktop
