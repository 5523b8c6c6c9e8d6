#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "desktop/linux/sway/SwaySocket.h"
#include "desktop/linux/wallpaper/Swaybg.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"

namespace linux_desktop {

/// The pictures that sway has shown by a swaybg of its own, which it starts anew for every change.
/// Its command line is the only place that tells what they are. Where an output shows something
/// else (a swaybg that the user has started, nothing at all), `otherwise` is asked.
class SwayWallpaper final : public WallpaperAdapter {
 public:
  /// `sway` outlives this; `otherwise` is not null.
  SwayWallpaper(SwaySocket& sway, std::shared_ptr<WallpaperAdapter> otherwise);

  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  std::optional<platform::Dictionary> options(const Monitor& monitor) override;
  Fault show(const Monitor& monitor, const QString& file,
             const platform::Dictionary& options) override;
  Fault restore(const Monitor& monitor, const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override;
  [[nodiscard]] bool mayHaveIcons() const override { return false; }
  [[nodiscard]] BackdropManner manner() const override { return otherwise_->manner(); }

 private:
  /// What sway was told last of an output, or had of it before.
  struct Told {
    SwaybgTold row;
    /// A swaybg that is started later shows what the user has set since.
    ProcessTime until = 0;
    /// Not what the user has there, which alone sway shows after a reload.
    bool isOurs = false;
  };

  [[nodiscard]] QStringList namesOf(const QString& output);
  [[nodiscard]] QString nameFor(const QString& output) const;
  [[nodiscard]] std::optional<SwaybgTold> shownOn(const QString& output);
  [[nodiscard]] Fault tell(const QString& output, const SwaybgTold& row, bool isOurs);
  [[nodiscard]] static bool isStarting(const Told& told,
                                       const std::optional<RunningSwaybg>& running);
  void tellAnew();

  SwaySocket& sway_;
  std::shared_ptr<WallpaperAdapter> otherwise_;
  /// By the output's name.
  std::map<QString, Told> told_;
  /// Under which of their names sway has the pictures of outputs, by their own.
  std::map<QString, QString> names_;
  SwaybgTable table_;
};

}  // namespace linux_desktop
