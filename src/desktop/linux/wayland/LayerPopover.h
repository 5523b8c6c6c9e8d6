#pragma once

#include <functional>
#include <memory>

#include "desktop/linux/wayland/QtWayland.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

/// A window of Qt's on the layer above all others, where the compositor puts it to the pixel, gives
/// it the keyboard at once and lists it nowhere.
class LayerPopover final : public OwnWindows::Popover {
 public:
  struct Client {
    /// Called out of the event loop when the compositor takes the window away.
    std::function<void()> dismissed;
    /// It is in front again, as one that came there last.
    std::function<void()> cameBack;
  };

  /// Null where the compositor does not answer. `window` is not on the screen, and is shown next.
  /// `isExact`: the place is off the panels already; else what they keep free comes to it. `qt` and
  /// `shell`, one of Qt's connection, outlive this.
  [[nodiscard]] static std::unique_ptr<LayerPopover> make(const QtWayland& qt,
                                                          zwlr_layer_shell_v1& shell,
                                                          QWindow& window, const QRect& place,
                                                          bool isExact, Client client);
  LayerPopover(const LayerPopover&) = delete;
  LayerPopover& operator=(const LayerPopover&) = delete;

  void moveTo(const QRect& place) override;
  void giveWay(bool toAnother) override;

 private:
  LayerPopover(QWindow& window, QScreen& screen, WaylandProxy<zwlr_layer_surface_v1> layer,
               Client client);

  QWindow& window_;
  QScreen& screen_;
  WaylandProxy<zwlr_layer_surface_v1> layer_;
  Client client_;
  bool configured_ = false;
  QObject context_;
};

}  // namespace linux_desktop
