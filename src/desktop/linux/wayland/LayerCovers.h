#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wayland/LayerSurface.h"
#include "desktop/linux/windowsystem/CoverFactory.h"
#include "desktop/linux/windowsystem/CoverPeer.h"

namespace linux_desktop {

class LayerCovers;

/// A cover on a Wayland compositor: its pictures are ShmPictures, its places outputs. An output
/// that was off and is on again is another one, and gets a surface of its own.
class LayerCover final : public CoverPeer<LayerSurface> {
 public:
  /// Both outlive this.
  LayerCover(platform::NSWindow& window, LayerCovers& covers);
  ~LayerCover() override;

  /// The outputs may be others now: where the cover's own is back, so is the cover, with the
  /// picture that it had.
  void lookAgain();
  void outputGoes(const WaylandOutput& output) { takeDownAt(output.global()); }
  void giveWay(LayerSurface::Place place);
  /// Puts up another surface with the same picture above all others of its layer.
  void remake();

 private:
  [[nodiscard]] const WaylandOutput* output() const;
  [[nodiscard]] std::optional<LayerSurface::Place> place() const override;
  [[nodiscard]] bool fits(const ShmPicture& picture,
                          const LayerSurface::Place& place) const override;
  [[nodiscard]] std::unique_ptr<LayerSurface> make(const LayerSurface::Place& place,
                                                   std::shared_ptr<const ShmPicture> picture,
                                                   std::function<void()> arrived) override;
  void entered() override;
  void left() override;
  void arrived(const LayerSurface::Place& place) override;

  LayerCovers& covers_;
  /// The output on which it stands or stood, and with what.
  QString home_;
  std::shared_ptr<const ShmPicture> picture_;
};

/// Covers on a Wayland compositor that has layers. They follow the outputs by themselves, and end
/// with the connection. Main thread only.
class LayerCovers final : public CoverFactory {
 public:
  /// All outlive this.
  LayerCovers(const LayerShell& shell, const WaylandOutputs& outputs,
              const MonitorScreens& screens);

  /// Whether the compositor has layers.
  [[nodiscard]] bool areThere() const { return shell_.isThere(); }
  [[nodiscard]] std::unique_ptr<platform::port::WindowPeer> createCover(
      platform::NSWindow& window, platform::port::WindowClient& client) override;

 private:
  friend class LayerCover;

  void forEach(const std::function<void(LayerCover&)>& act) const;

  const LayerShell& shell_;
  const WaylandOutputs& outputs_;
  const MonitorScreens& screens_;
  std::vector<LayerCover*> shown_;
  /// Another desktop of Plasma's may stand above the lowest sheets.
  QDBusServiceWatcher plasma_;
  OneShot startingPlasma_;
  QObject context_;
};

}  // namespace linux_desktop
