#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/files/FileWatch.h"
#include "desktop/linux/wallpaper/PcManFmQtOrders.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

/// LXQt's desktop: one picture for all monitors. It is told over the session bus, without waiting
/// for it: a refusal that could not be foreseen is a line on standard error. What it has been told
/// stands in its settings file, which it writes as a whole before it answers; until then what it
/// was told last counts.
class PcManFmQtWallpaper final : public WallpaperAdapter {
 public:
  explicit PcManFmQtWallpaper(const WallpaperSurroundings& surroundings);
  ~PcManFmQtWallpaper() override;

  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file,
                                  const platform::Dictionary& options) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override;
  [[nodiscard]] bool tilesFromDesktopOrigin() const override { return true; }
  [[nodiscard]] BackdropManner manner() const override;

 private:
  struct Settings;
  [[nodiscard]] Settings read() const;
  [[nodiscard]] Backdrop backdropOf(const Settings& settings) const;
  void answered(const PcManFmQtOrders::Order& order, const std::optional<std::string>& reason);
  /// Gives the file the contents that a state tells of.
  void putBackFile(const platform::Dictionary& state) const;
  [[nodiscard]] std::optional<std::string> putBackFile(const std::optional<QByteArray>& old) const;

  QString name_;  ///< of the settings file, below a configuration folder
  QString file_;
  PcManFmQtOrders orders_;
  /// What the file holds, beside the picture, since we had a picture shown.
  std::optional<QByteArray> ours_;
  /// The picture that is shown although the settings say colours only.
  QString inspiteOfMode_;
  std::function<void()> changed_;
  std::unique_ptr<FileWatch> watch_;
};

}  // namespace linux_desktop
