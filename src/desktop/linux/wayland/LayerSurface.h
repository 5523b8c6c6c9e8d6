#pragma once

#include <QSize>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/linux/wayland/ShmPicture.h"
#include "desktop/linux/wayland/WaylandConnection.h"
#include "desktop/linux/wayland/WaylandOutputs.h"

namespace linux_desktop {

[[nodiscard]] bool isKWin(const WaylandConnection& connection);

/// What surfaces of layers are made from. The connection outlives it.
struct LayerShell {
  explicit LayerShell(WaylandConnection& server);
  /// Whether the compositor has all of it.
  [[nodiscard]] bool isThere() const { return compositor && shm && shell && viewporter; }

  WaylandConnection& connection;
  WaylandProxy<wl_compositor> compositor;
  WaylandProxy<wl_shm> shm;
  WaylandProxy<zwlr_layer_shell_v1> shell;
  WaylandProxy<wp_viewporter> viewporter;
  /// What the surfaces of one cover call themselves, the lowest first.
  std::vector<const char*> kinds;
};

/// A bare surface of a layer, on all workspaces, without the keyboard. Nothing is seen of it.
class LayerPlace {
 public:
  /// From below: where icons and wallpapers are, of which the last to come is in front; above all
  /// of them, but below every window; where panels are; above everything.
  enum class Layer : std::uint8_t { Background, AboveIcons, Panels, Front };
  /// All of the output, or what panels leave of it.
  enum class Extent : std::uint8_t { UnderPanels, BesidePanels };
  struct Client {
    /// The compositor gives it a size in points.
    std::function<void(QSize size)> configured;
    /// The compositor has taken it away. May destroy this.
    std::function<void()> closed;
  };

  LayerPlace(const LayerShell& shell, Layer layer, Extent extent, const char* kind,
             const WaylandOutput& output, Client client);
  LayerPlace(const LayerPlace&) = delete;
  LayerPlace& operator=(const LayerPlace&) = delete;

  [[nodiscard]] wl_surface* surface() const { return surface_.get(); }
  void moveTo(Layer layer);
  /// Becomes the parent of a popup that has none, before that is committed.
  void adopt(xdg_popup& popup);

 private:
  Client client_;
  WaylandProxy<wl_surface> surface_;
  /// Goes before the surface whose role it is.
  WaylandProxy<zwlr_layer_surface_v1> role_;
};

/// A picture in a layer, all over an output. It appears with its picture, never empty; the
/// compositor keeps it in its place. It swallows clicks and does nothing with them.
class LayerSheet {
 public:
  struct Client {
    /// It is on the screen.
    std::function<void()> arrived;
    /// The compositor has taken it away.
    std::function<void()> closed;
  };
  using Layer = LayerPlace::Layer;

  /// `picture` is drawn out to the whole output, whose device pixels it has unless that is all one
  /// to it. Each of the client's is called once at most, and may destroy this.
  LayerSheet(const LayerShell& shell, Layer layer, const char* kind, const WaylandOutput& output,
             std::shared_ptr<const ShmPicture> picture, Client client);
  LayerSheet(const LayerSheet&) = delete;
  LayerSheet& operator=(const LayerSheet&) = delete;

  void setPicture(std::shared_ptr<const ShmPicture> picture);
  void moveTo(Layer layer) { place_.moveTo(layer); }
  [[nodiscard]] wl_surface* surface() const { return place_.surface(); }

 private:
  void configure(QSize size);
  void paint();

  WaylandConnection& connection_;
  std::shared_ptr<const ShmPicture> picture_;
  std::function<void()> arrived_;
  LayerPlace place_;
  WaylandProxy<wp_viewport> viewport_;
  /// With the first picture.
  std::unique_ptr<CaughtUp> shown_;
  QSize size_;
};

/// A picture all over one output, above the icons and below every window and panel, whatever the
/// user does: one sheet, or several that show the same where no kind of sheet stays there always.
class LayerSurface {
 public:
  using Picture = ShmPicture;
  /// The output's number among the globals.
  using Place = std::uint32_t;
  [[nodiscard]] static bool meet(Place one, Place other) { return one == other; }

  /// See LayerSheet.
  LayerSurface(const LayerShell& shell, const WaylandOutput& output,
               const std::shared_ptr<const ShmPicture>& picture, const LayerSheet::Client& client);
  LayerSurface(const LayerSurface&) = delete;
  LayerSurface& operator=(const LayerSurface&) = delete;

  [[nodiscard]] Place place() const { return place_; }
  [[nodiscard]] const std::shared_ptr<const ShmPicture>& picture() const { return picture_; }
  void setPicture(const std::shared_ptr<const ShmPicture>& picture);

 private:
  Place place_;
  std::shared_ptr<const ShmPicture> picture_;
  std::vector<std::unique_ptr<LayerSheet>> sheets_;
};

}  // namespace linux_desktop
