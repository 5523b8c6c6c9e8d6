#include "desktop/linux/wayland/LayerPopover.h"

#include <QGuiApplication>
#include <QScreen>
#include <chrono>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

constexpr std::chrono::milliseconds kAnswer{500};
/// The compositor gives the keyboard at once and to nobody else.
constexpr std::uint32_t kExclusive = 1;
constexpr std::uint32_t kNoKeyboard = 0;
constexpr std::int32_t kOverPanelsToo = -1;

/// The screen that holds the place, or the most of it.
QScreen& screenOf(const QRect& place) {
  QScreen* screen = QGuiApplication::screenAt(place.center());
  if (screen == nullptr) screen = QGuiApplication::screenAt(place.topLeft());
  return screen == nullptr ? *QGuiApplication::primaryScreen() : *screen;
}

}  // namespace

std::unique_ptr<LayerPopover> LayerPopover::make(const QtWayland& qt, zwlr_layer_shell_v1& shell,
                                                 QWindow& window, const QRect& place, bool isExact,
                                                 Client client) {
  // A surface that had a role does not get another one.
  if (QtWayland::surfaceOf(window) == nullptr) {
    window.destroy();
    window.create();
  }
  // Qt gives no role of its own to a window that asks for none.
  window.setFlag(Qt::BypassWindowManagerHint);
  wl_surface* surface = QtWayland::surfaceOf(window);
  if (surface == nullptr) return nullptr;
  QScreen& screen = screenOf(place);
  auto layer = qt.makeAwaited<zwlr_layer_surface_v1>(shell, [&](zwlr_layer_shell_v1& maker) {
    return zwlr_layer_shell_v1_get_layer_surface(&maker, surface, QtWayland::outputOf(screen),
                                                 ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY,
                                                 "calmdeck-panel");
  });
  zwlr_layer_surface_v1& role = *layer;
  std::unique_ptr<LayerPopover> popover(
      new LayerPopover(window, screen, std::move(layer), std::move(client)));
  if (isExact) zwlr_layer_surface_v1_set_exclusive_zone(&role, kOverPanelsToo);
  popover->moveTo(place);
  if (qt.waitFor(
          role, [&] { return popover->configured_; }, kAnswer))
    return popover;
  qCWarning(lcWayland, "the compositor has not placed the panel in time");
  popover.reset();
  window.setFlag(Qt::BypassWindowManagerHint, false);
  window.destroy();
  window.create();
  return nullptr;
}

LayerPopover::LayerPopover(QWindow& window, QScreen& screen,
                           WaylandProxy<zwlr_layer_surface_v1> layer, Client client)
    : window_(window), screen_(screen), layer_(std::move(layer)), client_(std::move(client)) {
  static constexpr zwlr_layer_surface_v1_listener kListener{
      [](void* self, zwlr_layer_surface_v1* role, std::uint32_t serial, std::uint32_t,
         std::uint32_t) {
        zwlr_layer_surface_v1_ack_configure(role, serial);
        static_cast<LayerPopover*>(self)->configured_ = true;
      },
      [](void* self, zwlr_layer_surface_v1*) {
        static_cast<LayerPopover*>(self)->client_.dismissed();
      }};
  zwlr_layer_surface_v1_add_listener(layer_.get(), &kListener, this);
  zwlr_layer_surface_v1_set_keyboard_interactivity(layer_.get(), kExclusive);
  // Qt then lets go of the surface, which has to outlive its role.
  QObject::connect(&window, &QWindow::visibleChanged, &context_, [this](bool visible) {
    if (!visible) layer_.reset();
  });
}

// In one layer compositors differ in which of two is in front and has the keyboard.
void LayerPopover::giveWay(bool toAnother) {
  wl_surface* surface = QtWayland::surfaceOf(window_);
  if (!layer_ || surface == nullptr) return;
  zwlr_layer_surface_v1_set_keyboard_interactivity(layer_.get(),
                                                   toAnother ? kNoKeyboard : kExclusive);
  zwlr_layer_surface_v1_set_layer(
      layer_.get(), toAnother ? ZWLR_LAYER_SHELL_V1_LAYER_TOP : ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY);
  wl_surface_commit(surface);
  if (!toAnother) client_.cameBack();
}

// From the nearest corner, so that what the panels keep free comes to it from the compositor.
void LayerPopover::moveTo(const QRect& place) {
  wl_surface* surface = QtWayland::surfaceOf(window_);
  if (!layer_ || surface == nullptr) return;
  const QRect area = screen_.geometry();
  const int left = place.left() - area.left();
  const int right = area.right() - place.right();
  const int top = place.top() - area.top();
  const int bottom = area.bottom() - place.bottom();
  const std::uint32_t anchor = std::uint32_t{left <= right ? ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT
                                                           : ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT} |
                               std::uint32_t{top <= bottom ? ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP
                                                           : ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM};
  zwlr_layer_surface_v1_set_anchor(layer_.get(), anchor);
  zwlr_layer_surface_v1_set_margin(layer_.get(), top, right, bottom, left);
  zwlr_layer_surface_v1_set_size(layer_.get(), static_cast<std::uint32_t>(place.width()),
                                 static_cast<std::uint32_t>(place.height()));
  wl_surface_commit(surface);
}

}  // namespace linux_desktop
