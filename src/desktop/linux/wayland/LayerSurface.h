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

/// What covers are made from. The connection outlives it.
struct LayerShell {
  explicit LayerShell(WaylandConnection& server);
  /// Whether the compositor has all of it.
  [[nodiscard]] bool isThere() const { return compositor && shell && viewporter; }

  WaylandConnection& connection;
  WaylandProxy<wl_compositor> compositor;
  WaylandProxy<zwlr_layer_shell_v1> shell;
  WaylandProxy<wp_viewporter> viewporter;
  /// What the surfaces of one cover call themselves, the lowest first.
  std::vector<const char*> kinds;
};

/// One surface of a layer below every window and panel, on all workspaces. It appears with its
/// picture, never empty; the compositor keeps it in its place. It gets no keyboard, and swallows
/// clicks and does nothing with them.
class LayerSheet {
 public:
  struct Client {
    /// It is on the screen.
    std::function<void()> arrived;
    /// The compositor has taken it away.
    std::function<void()> closed;
  };
  /// Where icons and wallpapers are, of which the last to come is in front; or above all of them.
  enum class Layer : std::uint8_t { Background, AboveIcons };

  /// `picture` has the output's device pixels. Each of the client's is called once at most, and may
  /// destroy this.
  LayerSheet(LayerShell& shell, Layer layer, const char* kind, const WaylandOutput& output,
             std::shared_ptr<const ShmPicture> picture, Client client);
  LayerSheet(const LayerSheet&) = delete;
  LayerSheet& operator=(const LayerSheet&) = delete;

  void setPicture(std::shared_ptr<const ShmPicture> picture);

 private:
  void listen();
  /// The compositor gives it a size in points.
  void configure(std::uint32_t serial, QSize size);
  void paint();
  void awaitArrival();

  WaylandConnection& connection_;
  std::shared_ptr<const ShmPicture> picture_;
  Client client_;
  WaylandProxy<wl_surface> surface_;
  WaylandProxy<wp_viewport> viewport_;
  /// Goes before the surface whose role it is.
  WaylandProxy<zwlr_layer_surface_v1> layer_;
  /// Answered when the compositor has the first picture.
  WaylandProxy<wl_callback> first_;
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
  LayerSurface(LayerShell& shell, const WaylandOutput& output,
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
