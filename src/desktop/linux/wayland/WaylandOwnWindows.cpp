#include "desktop/linux/wayland/WaylandOwnWindows.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <chrono>
#include <utility>

namespace linux_desktop {
namespace {

constexpr std::uint32_t kShellVersion = 4;
/// How long a button may be held, that has been clicked already, and the pointer so not be told of.
constexpr std::chrono::milliseconds kPointerPatience{300};
/// For the compositor to say how much room there is.
constexpr std::chrono::milliseconds kRoom{500};
constexpr const char* kProbe = "calmdeck-probe";

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

WaylandOwnWindows::WaylandOwnWindows(const QtWayland& qt, const WaylandKeyboard& keyboard,
                                     const LayerShell& shell, WaylandOutputs& outputs)
    : qt_(qt),
      keyboard_(keyboard),
      shell_(shell),
      outputs_(outputs),
      seat_(shell.connection),
      popovers_(qt.bindFirst<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, kShellVersion)),
      inhibition_(qt.bindFirst<zwp_keyboard_shortcuts_inhibit_manager_v1>(
          zwp_keyboard_shortcuts_inhibit_manager_v1_interface, 1)) {
  patience_.setSingleShot(true);
  patience_.setInterval(kPointerPatience);
  QObject::connect(&patience_, &QTimer::timeout, &patience_, [this] { pointerFound(); });
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
  auto popover =
      LayerPopover::make(qt_, *popovers_, window, place, !panels().empty(),
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

// Compositors tell nobody where bars are, but give a surface that keeps clear of them less room.
QScreen* WaylandOwnWindows::screenWithBar() const {
  struct Probe {
    Probe(const LayerShell& shell, const WaylandOutput& of)
        : monitor(of.monitor()),
          place(shell, LayerPlace::Layer::Background, LayerPlace::Extent::BesidePanels, kProbe, of,
                {[this](QSize given) { room = given; }, {}}) {}

    Monitor monitor;
    QSize room;
    LayerPlace place;
  };
  std::vector<std::unique_ptr<Probe>> probes;
  for (const WaylandOutput* output : outputs_.all())
    probes.push_back(std::make_unique<Probe>(shell_, *output));
  const auto isTold = [](const auto& probe) { return !probe->room.isEmpty(); };
  shell_.connection.waitFor([&] { return std::ranges::all_of(probes, isTold); }, kRoom);
  for (const auto& probe : probes) {
    if (!isTold(probe) || probe->room == probe->monitor.points.size()) continue;
    for (QScreen* screen : QGuiApplication::screens())
      if (screen->name() == probe->monitor.name) return screen;
  }
  return nullptr;
}

QScreen& WaylandOwnWindows::likelyScreen() {
  // Any surface that comes or goes has sway look anew at who has the keyboard.
  const bool isPanelUp = !catcher_.expired();
  if (!isPanelUp) likelyScreen_ = isPossible() ? screenWithBar() : nullptr;
  return likelyScreen_ ? *likelyScreen_ : OwnWindows::likelyScreen();
}

}  // namespace linux_desktop
