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

/// By LayerPlace::Layer.
constexpr std::uint32_t kLayers[] = {
    ZWLR_LAYER_SHELL_V1_LAYER_BACKGROUND, ZWLR_LAYER_SHELL_V1_LAYER_BOTTOM,
    ZWLR_LAYER_SHELL_V1_LAYER_TOP, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY};

constexpr std::uint32_t numberOf(LayerPlace::Layer layer) {
  return kLayers[static_cast<std::size_t>(layer)];
}

std::vector<const char*> kindsFor(const WaylandConnection& connection) {
  if (isKWin(connection)) return {kDesktop, kOther};
  return {kDesktop};
}

}  // namespace

bool isKWin(const WaylandConnection& connection) {
  return std::ranges::count(connection.globals(), kOfKWin, &WaylandGlobal::interface) > 0;
}

LayerShell::LayerShell(WaylandConnection& server)
    : connection(server),
      compositor(server.bindFirst<wl_compositor>(wl_compositor_interface, kCompositorVersion)),
      shm(server.bindFirst<wl_shm>(wl_shm_interface, 1)),
      shell(server.bindFirst<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, kShellVersion)),
      viewporter(server.bindFirst<wp_viewporter>(wp_viewporter_interface, 1)),
      kinds(kindsFor(server)) {}

LayerPlace::LayerPlace(const LayerShell& shell, Layer layer, Extent extent, const char* kind,
                       const WaylandOutput& output, Client client)
    : client_(std::move(client)),
      surface_(wl_compositor_create_surface(shell.compositor.get())),
      role_(zwlr_layer_shell_v1_get_layer_surface(shell.shell.get(), surface_.get(), output.get(),
                                                  numberOf(layer), kind)) {
  static constexpr zwlr_layer_surface_v1_listener kListener{
      [](void* self, zwlr_layer_surface_v1* role, std::uint32_t serial, std::uint32_t width,
         std::uint32_t height) {
        zwlr_layer_surface_v1_ack_configure(role, serial);
        static_cast<LayerPlace*>(self)->client_.configured(
            QSize(static_cast<int>(width), static_cast<int>(height)));
      },
      [](void* self, zwlr_layer_surface_v1*) {
        const auto closed = std::exchange(static_cast<LayerPlace*>(self)->client_.closed, {});
        if (closed) closed();
      }};
  zwlr_layer_surface_v1_add_listener(role_.get(), &kListener, this);
  zwlr_layer_surface_v1_set_anchor(role_.get(), kAllEdges);
  zwlr_layer_surface_v1_set_exclusive_zone(role_.get(),
                                           extent == Extent::UnderPanels ? kUnderPanels : 0);
  zwlr_layer_surface_v1_set_keyboard_interactivity(
      role_.get(), ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
  wl_surface_commit(surface_.get());
}

void LayerPlace::moveTo(Layer layer) {
  zwlr_layer_surface_v1_set_layer(role_.get(), numberOf(layer));
  wl_surface_commit(surface_.get());
}

void LayerPlace::adopt(xdg_popup& popup) {
  zwlr_layer_surface_v1_get_popup(role_.get(), &popup);
}

LayerSheet::LayerSheet(const LayerShell& shell, Layer layer, const char* kind,
                       const WaylandOutput& output, std::shared_ptr<const ShmPicture> picture,
                       Client client)
    : connection_(shell.connection),
      picture_(std::move(picture)),
      arrived_(std::move(client.arrived)),
      place_(shell, layer, LayerPlace::Extent::UnderPanels, kind, output,
             {[this](QSize size) { configure(size); }, std::move(client.closed)}),
      viewport_(wp_viewporter_get_viewport(shell.viewporter.get(), place_.surface())) {}

void LayerSheet::configure(QSize size) {
  if (size == size_ || size.isEmpty()) return wl_surface_commit(surface());
  const bool isFirst = size_.isEmpty();
  size_ = size;
  wp_viewport_set_destination(viewport_.get(), size.width(), size.height());
  paint();
  if (isFirst && arrived_)
    shown_ = std::make_unique<CaughtUp>(connection_, std::exchange(arrived_, {}));
}

void LayerSheet::setPicture(std::shared_ptr<const ShmPicture> picture) {
  picture_ = std::move(picture);
  if (!size_.isEmpty()) paint();
}

void LayerSheet::paint() {
  wl_surface_attach(surface(), picture_->buffer(), 0, 0);
  wl_surface_damage_buffer(surface(), 0, 0, picture_->size().width(), picture_->size().height());
  wl_surface_commit(surface());
}

LayerSurface::LayerSurface(const LayerShell& shell, const WaylandOutput& output,
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
