#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wallpaper/Swaybg.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wayland/LayerSurface.h"
#include "desktop/linux/wayland/ShmPicture.h"
#include "desktop/linux/wayland/WaylandOutputs.h"
#include "desktop/linux/windowsystem/MonitorScreens.h"

namespace linux_desktop {

/// A compositor of which nobody is known to set the picture: ours is a surface above whatever shows
/// one, be it a swaybg of the user's, which is left alone. To restore is to take it away, which
/// also happens when this program ends in any way. Ours comes back with an output.
class LayerWallpaper final : public WallpaperAdapter {
 public:
  /// All outlive this.
  LayerWallpaper(const LayerShell& shell, const WaylandOutputs& outputs,
                 const MonitorScreens& screens);

  /// For a compositor that puts a surface below those of its layer that were there before: ours go
  /// into the next layer.
  void standAboveOthers() { layer_ = LayerSheet::Layer::AboveIcons; }

  /// Ours, or that of a swaybg.
  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  Fault show(const Monitor& monitor, const QString& file,
             const platform::Dictionary& options) override;
  Fault restore(const Monitor& monitor, const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override { swaybg_.setChanged(changed); }
  [[nodiscard]] bool mayHaveIcons() const override { return false; }
  [[nodiscard]] BackdropManner manner() const override { return {.turnsUpright = true}; }

 private:
  struct Shown {
    Backdrop backdrop;
    std::shared_ptr<const ShmPicture> picture = {};
    std::unique_ptr<LayerSheet> sheet = {};
    /// The output's number among the globals.
    std::uint32_t place = 0;
  };

  [[nodiscard]] Fault put(const QString& output, const Backdrop& backdrop);
  [[nodiscard]] std::shared_ptr<const ShmPicture> draw(const Backdrop& backdrop,
                                                       const Monitor& monitor) const;
  void putUp(Shown& shown, const WaylandOutput& output);
  void outputsChanged();

  const LayerShell& shell_;
  const WaylandOutputs& outputs_;
  const MonitorScreens& screens_;
  LayerSheet::Layer layer_ = LayerSheet::Layer::Background;
  SwaybgTable swaybg_;
  /// By the output's name.
  std::map<QString, Shown> shown_;
  OneShot settling_;
};

}  // namespace linux_desktop
