#include "desktop/linux/wayland/WaylandOwnWindows.h"

#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <utility>

#include "desktop/linux/log/Log.h"
#include "desktop/linux/wayland/Bars.h"

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

constexpr std::uint32_t kShellVersion = 4;
/// How long a button may be held, that has been clicked already, and the pointer so not be told of.
constexpr std::chrono::milliseconds kPointerPatience{300};

class Watch final : public OwnWindows::PressWatch {
 public:
  Watch(WaylandConnection& connection, std::shared_ptr<PressCatcher> catcher,
        OwnWindows::Pressed pressed)
      : connection_(connection), catcher_(std::move(catcher)) {
    catcher_->setPressed(
        [pressed = std::move(pressed)](std::uint32_t time) { pressed({.time = time}); });
  }
  ~Watch() override {
    catcher_.reset();
    // Before the panel, which goes over another connection: what is pressed then is for others.
    connection_.roundTrip();
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  // What is pressed on a window of ours does not get to the catcher.
  void discardPending() override {}

 private:
  WaylandConnection& connection_;
  std::shared_ptr<PressCatcher> catcher_;
};

class Inhibitor final : public OwnWindows::KeyDiversion {
 public:
  explicit Inhibitor(WaylandProxy<zwp_keyboard_shortcuts_inhibitor_v1> inhibitor)
      : inhibitor_(std::move(inhibitor)) {}

 private:
  WaylandProxy<zwp_keyboard_shortcuts_inhibitor_v1> inhibitor_;
};

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

WaylandOwnWindows::WaylandOwnWindows(const QtWayland& qt, const WaylandKeyboard& keyboard,
                                     const LayerShell& shell, WaylandOutputs& outputs)
    : qt_(qt),
      keyboard_(keyboard),
      shell_(shell),
      outputs_(outputs),
      seat_(shell.connection),
      popovers_(qt.bindFirst<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, kShellVersion)),
      inhibition_(qt.bindFirst<zwp_keyboard_shortcuts_inhibit_manager_v1>(
          zwp_keyboard_shortcuts_inhibit_manager_v1_interface, 1)),
      patience_(kPointerPatience, [this] { pointerFound(); }) {
  // Has Qt leave the role of windows to us that ask for it.
  qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
}

// Qt needs a token for it, which few bars give.
void WaylandOwnWindows::activate(QWindow& window) {
  if (bringer_ && bringer_(window.title())) {
    setToken({});
  } else {
    OwnWindows::activate(window);
  }
}

std::unique_ptr<OwnWindows::Popover> WaylandOwnWindows::makePopover(
    QWindow& window, const QRect& place, const std::function<void()>& dismissed) {
  if (!isPossible()) return nullptr;
  const auto glass = catcher();
  glass->awaitArrival();
  kept_ = glass;
  QMetaObject::invokeMethod(
      &patience_,
      [this] {
        if (finders_.empty()) kept_.reset();
      },
      Qt::QueuedConnection);
  const bool isExact = std::ranges::any_of(
      panels(), [](const DesktopPanel& panel) { return !panel.reserved.isEmpty(); });
  auto popover =
      LayerPopover::make(qt_, *popovers_, window, place, isExact,
                         {.dismissed = dismissed, .cameBack = [this] { putCatcherBehind(); }});
  putCatcherBehind();
  return popover;
}

void WaylandOwnWindows::putCatcherBehind() {
  const auto glass = catcher_.lock();
  if (!glass || !firstIsInFront_) return;
  qt_.roundTrip();
  glass->comeAnew();
}

std::unique_ptr<OwnWindows::KeyDiversion> WaylandOwnWindows::divertKeys(QWindow& window) {
  wl_surface* surface = QtWayland::surfaceOf(window);
  if (!inhibition_ || keyboard_.seat() == nullptr || surface == nullptr) return nullptr;
  return std::make_unique<Inhibitor>(WaylandProxy<zwp_keyboard_shortcuts_inhibitor_v1>(
      zwp_keyboard_shortcuts_inhibit_manager_v1_inhibit_shortcuts(inhibition_.get(), surface,
                                                                  keyboard_.seat())));
}

void WaylandOwnWindows::findPointer(const PointerFound& found) {
  if (!isPossible() || !seat_.hasPointer()) return found(std::nullopt);
  const bool wasThere = !catcher_.expired();
  (void)panels();  // they cannot be looked for once the glass is there
  const auto glass = catcher();
  if (wasThere && finders_.empty()) return found(glass->pointer());
  finders_.push_back(found);
  kept_ = glass;
  glass->setEntered([this] { pointerFound(); });
  if (!patience_.isActive()) patience_.start();
}

void WaylandOwnWindows::pointerFound() {
  patience_.stop();
  const auto glass = std::exchange(kept_, nullptr);
  const auto place = glass ? glass->pointer() : std::nullopt;
  for (const PointerFound& found : std::exchange(finders_, {})) found(place);
}

std::unique_ptr<OwnWindows::PressWatch> WaylandOwnWindows::watchPresses(QWindow& /*window*/,
                                                                        const Pressed& pressed) {
  if (!isPossible()) return nullptr;
  return std::make_unique<Watch>(shell_.connection, catcher(), pressed);
}

std::shared_ptr<PressCatcher> WaylandOwnWindows::catcher() {
  auto glass = catcher_.lock();
  if (!glass) glass = std::make_shared<PressCatcher>(shell_, outputs_, seat_);
  catcher_ = glass;
  return glass;
}

std::vector<DesktopPanel> WaylandOwnWindows::panels() {
  if (auto told = panels_ ? panels_() : std::vector<DesktopPanel>(); !told.empty()) return told;
  // Any surface that comes or goes has sway look anew at who has the keyboard.
  const bool isPanelUp = !catcher_.expired();
  if (!isPanelUp) bars_ = isPossible() ? barsOn(shell_, outputs_) : std::vector<DesktopPanel>();
  return bars_;
}

}  // namespace linux_desktop
