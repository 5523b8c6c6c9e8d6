#include "desktop/linux/wayland/PressCatcher.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "desktop/linux/files/FileDescriptor.h"

namespace linux_desktop {
namespace {

constexpr std::uint32_t kCompositorVersion = 4;
constexpr std::uint32_t kShellVersion = 4;
/// The whole of the output, whatever panels keep free.
constexpr std::int32_t kUnderPanelsToo = -1;

/// One pixel that nobody sees.
WaylandProxy<wl_buffer> clearPixel(wl_shm& shm) {
  constexpr std::int32_t kBytes = 4;
  const FileDescriptor file(::memfd_create("calmdeck-catcher", MFD_CLOEXEC));
  if (::ftruncate(file.get(), kBytes) != 0) return nullptr;
  const WaylandProxy<wl_shm_pool> pool(wl_shm_create_pool(&shm, file.get(), kBytes));
  return WaylandProxy<wl_buffer>(
      wl_shm_pool_create_buffer(pool.get(), 0, 1, 1, kBytes, WL_SHM_FORMAT_ARGB8888));
}

}  // namespace

CatcherParts::CatcherParts(WaylandConnection& connection)
    : compositor(connection.bindFirst<wl_compositor>(wl_compositor_interface, kCompositorVersion)),
      shm(connection.bindFirst<wl_shm>(wl_shm_interface, 1)),
      viewporter(connection.bindFirst<wp_viewporter>(wp_viewporter_interface, 1)),
      shell(connection.bindFirst<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface,
                                                      kShellVersion)) {}

/// The glass over one output.
class PressCatcher::Pane {
 public:
  Pane(const CatcherParts& parts, const WaylandOutput& output, std::uint32_t level)
      : output_(output),
        pixel_(clearPixel(*parts.shm)),
        surface_(wl_compositor_create_surface(parts.compositor.get())),
        viewport_(wp_viewporter_get_viewport(parts.viewporter.get(), surface_.get())),
        layer_(zwlr_layer_shell_v1_get_layer_surface(parts.shell.get(), surface_.get(),
                                                     output.get(), level, "calmdeck-catcher")) {
    static constexpr zwlr_layer_surface_v1_listener kListener{
        [](void* self, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t width,
           std::uint32_t height) {
          zwlr_layer_surface_v1_ack_configure(layer, serial);
          static_cast<Pane*>(self)->fill(static_cast<int>(width), static_cast<int>(height));
        },
        // The output goes, and then this does.
        [](void*, zwlr_layer_surface_v1*) {}};
    zwlr_layer_surface_v1_add_listener(layer_.get(), &kListener, this);
    zwlr_layer_surface_v1_set_anchor(
        layer_.get(), ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                          ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
    zwlr_layer_surface_v1_set_exclusive_zone(layer_.get(), kUnderPanelsToo);
    wl_surface_commit(surface_.get());
  }

  void moveTo(std::uint32_t level) {
    zwlr_layer_surface_v1_set_layer(layer_.get(), level);
    wl_surface_commit(surface_.get());
  }
  [[nodiscard]] const WaylandOutput& output() const { return output_; }
  [[nodiscard]] wl_surface* surface() const { return surface_.get(); }

 private:
  void fill(int width, int height) {
    if (width <= 0 || height <= 0) return;
    wl_surface_attach(surface_.get(), pixel_.get(), 0, 0);
    wp_viewport_set_destination(viewport_.get(), width, height);
    wl_surface_damage(surface_.get(), 0, 0, width, height);
    wl_surface_commit(surface_.get());
  }

  const WaylandOutput& output_;
  WaylandProxy<wl_buffer> pixel_;
  // What is made later goes first: a role before its surface.
  WaylandProxy<wl_surface> surface_;
  WaylandProxy<wp_viewport> viewport_;
  WaylandProxy<zwlr_layer_surface_v1> layer_;
};

PressCatcher::PressCatcher(const CatcherParts& parts, WaylandOutputs& outputs, PointerSeat& seat)
    : parts_(parts), outputs_(outputs), seat_(seat) {
  // First, so that it hears of the pointer that the glass slides under.
  seat_.listen(*parts.compositor, *parts.shm,
               {.pressed =
                    [this](std::uint32_t time) {
                      if (pressed_) pressed_(time);
                    },
                .entered =
                    [this] {
                      if (entered_) entered_();
                    }});
  coverAll();
  QObject::connect(&outputs, &WaylandOutputs::changed, &context_, [this] { coverAll(); });
  QObject::connect(&outputs, &WaylandOutputs::goes, &context_, [this](const WaylandOutput& output) {
    std::erase_if(panes_, [&](const auto& pane) { return &pane->output() == &output; });
  });
}

PressCatcher::~PressCatcher() {
  seat_.stop();
}

void PressCatcher::coverAll() {
  for (const WaylandOutput* output : outputs_.all()) {
    const bool isCovered = std::ranges::any_of(
        panes_, [output](const auto& pane) { return &pane->output() == output; });
    if (!isCovered) panes_.push_back(std::make_unique<Pane>(parts_, *output, level_));
  }
}

void PressCatcher::goBehindPopovers() {
  level_ = ZWLR_LAYER_SHELL_V1_LAYER_TOP;
  for (const auto& pane : panes_) pane->moveTo(level_);
}

std::optional<QPoint> PressCatcher::pointer() const {
  const auto& place = seat_.pointer();
  if (!place) return std::nullopt;
  const auto pane =
      std::ranges::find(panes_, place->surface, [](const auto& one) { return one->surface(); });
  if (pane == panes_.end()) return std::nullopt;
  return (*pane)->output().monitor().points.topLeft() + place->point.toPoint();
}

}  // namespace linux_desktop
