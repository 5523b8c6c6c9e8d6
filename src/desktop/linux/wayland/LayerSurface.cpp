#include "desktop/linux/wayland/LayerSurface.h"

#include <algorithm>
#include <utility>

namespace linux_desktop {
namespace {

constexpr std::uint32_t kCompositorVersion = 4;
constexpr std::uint32_t kShellVersion = 4;
constexpr std::uint32_t kAllEdges =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
    ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
/// Also where panels keep windows out.
constexpr int kUnderPanels = -1;

// KWin sorts by what a surface calls itself. Only a "desktop" stays when the user has the desktop
// shown, but up to Plasma 5 one that comes later stands above it; any other kind stands above all
// of those.
constexpr const char* kDesktop = "desktop";
constexpr const char* kOther = "calmdeck-cover";
constexpr const char* kOfKWin = "org_kde_plasma_shell";

std::uint32_t numberOf(LayerSheet::Layer layer) {
  return layer == LayerSheet::Layer::Background ? ZWLR_LAYER_SHELL_V1_LAYER_BACKGROUND
                                                : ZWLR_LAYER_SHELL_V1_LAYER_BOTTOM;
}

std::vector<const char*> kindsFor(const WaylandConnection& connection) {
  const bool isKWin = std::ranges::count(connection.globals(), kOfKWin, &WaylandGlobal::interface);
  if (isKWin) return {kDesktop, kOther};
  return {kDesktop};
}

}  // namespace

LayerShell::LayerShell(WaylandConnection& server)
    : connection(server),
      compositor(server.bindFirst<wl_compositor>(wl_compositor_interface, kCompositorVersion)),
      shell(server.bindFirst<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, kShellVersion)),
      viewporter(server.bindFirst<wp_viewporter>(wp_viewporter_interface, 1)),
      kinds(kindsFor(server)) {}

LayerSheet::LayerSheet(LayerShell& shell, Layer layer, const char* kind,
                       const WaylandOutput& output, std::shared_ptr<const ShmPicture> picture,
                       Client client)
    : connection_(shell.connection),
      picture_(std::move(picture)),
      client_(std::move(client)),
      surface_(wl_compositor_create_surface(shell.compositor.get())),
      viewport_(wp_viewporter_get_viewport(shell.viewporter.get(), surface_.get())),
      layer_(zwlr_layer_shell_v1_get_layer_surface(shell.shell.get(), surface_.get(), output.get(),
                                                   numberOf(layer), kind)) {
  listen();
  zwlr_layer_surface_v1_set_anchor(layer_.get(), kAllEdges);
  zwlr_layer_surface_v1_set_exclusive_zone(layer_.get(), kUnderPanels);
  zwlr_layer_surface_v1_set_keyboard_interactivity(
      layer_.get(), ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
  wl_surface_commit(surface_.get());
}

void LayerSheet::listen() {
  static constexpr zwlr_layer_surface_v1_listener kListener{
      [](void* self, zwlr_layer_surface_v1*, std::uint32_t serial, std::uint32_t width,
         std::uint32_t height) {
        static_cast<LayerSheet*>(self)->configure(
            serial, QSize(static_cast<int>(width), static_cast<int>(height)));
      },
      [](void* self, zwlr_layer_surface_v1*) {
        const auto closed = std::exchange(static_cast<LayerSheet*>(self)->client_.closed, {});
        if (closed) closed();
      }};
  zwlr_layer_surface_v1_add_listener(layer_.get(), &kListener, this);
}

void LayerSheet::configure(std::uint32_t serial, QSize size) {
  zwlr_layer_surface_v1_ack_configure(layer_.get(), serial);
  if (size == size_ || size.isEmpty()) return wl_surface_commit(surface_.get());
  const bool isFirst = size_.isEmpty();
  size_ = size;
  wp_viewport_set_destination(viewport_.get(), size.width(), size.height());
  paint();
  if (isFirst) awaitArrival();
}

void LayerSheet::awaitArrival() {
  static constexpr wl_callback_listener kListener{[](void* self, wl_callback*, std::uint32_t) {
    const auto arrived = std::exchange(static_cast<LayerSheet*>(self)->client_.arrived, {});
    if (arrived) arrived();
  }};
  first_ = connection_.sync();
  wl_callback_add_listener(first_.get(), &kListener, this);
}

void LayerSheet::setPicture(std::shared_ptr<const ShmPicture> picture) {
  picture_ = std::move(picture);
  if (!size_.isEmpty()) paint();
}

void LayerSheet::paint() {
  wl_surface_attach(surface_.get(), picture_->buffer(), 0, 0);
  wl_surface_damage_buffer(surface_.get(), 0, 0, picture_->size().width(),
                           picture_->size().height());
  wl_surface_commit(surface_.get());
}

LayerSurface::LayerSurface(LayerShell& shell, const WaylandOutput& output,
                           const std::shared_ptr<const ShmPicture>& picture,
                           const LayerSheet::Client& client)
    : place_(output.global()), picture_(picture) {
  for (const char* kind : shell.kinds) {
    const bool isHighest = kind == shell.kinds.back();
    sheets_.push_back(std::make_unique<LayerSheet>(
        shell, LayerSheet::Layer::AboveIcons, kind, output, picture,
        LayerSheet::Client{isHighest ? client.arrived : std::function<void()>(), client.closed}));
  }
}

void LayerSurface::setPicture(const std::shared_ptr<const ShmPicture>& picture) {
  picture_ = picture;
  for (const auto& sheet : sheets_) sheet->setPicture(picture);
}

}  // namespace linux_desktop
