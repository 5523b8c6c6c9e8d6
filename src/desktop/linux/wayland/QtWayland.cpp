#include "desktop/linux/wayland/QtWayland.h"

#include <poll.h>
#include <qpa/qplatformnativeinterface.h>

#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QScreen>

namespace linux_desktop {
namespace {

wl_registry* registryOn(wl_display* display, wl_event_queue* queue) {
  auto* wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
  wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
  wl_registry* registry = wl_display_get_registry(wrapper);
  wl_proxy_wrapper_destroy(wrapper);
  return registry;
}

}  // namespace

std::unique_ptr<QtWayland> QtWayland::open() {
  if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) return nullptr;
  void* display = QGuiApplication::platformNativeInterface()->nativeResourceForIntegration(
      QByteArrayLiteral("wl_display"));
  if (display == nullptr) return nullptr;
  return std::unique_ptr<QtWayland>(new QtWayland(static_cast<wl_display*>(display)));
}

QtWayland::QtWayland(wl_display* display)
    : display_(display),
      awaited_(wl_display_create_queue(display)),
      registry_(registryOn(display, awaited_.get())) {
  static constexpr wl_registry_listener kListener{
      [](void* self, wl_registry*, std::uint32_t name, const char* interface,
         std::uint32_t version) {
        static_cast<QtWayland*>(self)->globals_.push_back({name, interface, version});
      },
      [](void* self, wl_registry*, std::uint32_t name) {
        std::erase_if(static_cast<QtWayland*>(self)->globals_,
                      [name](const WaylandGlobal& global) { return global.name == name; });
      }};
  wl_registry_add_listener(registry_.get(), &kListener, this);
  // As Qt has done just now.
  wl_display_roundtrip_queue(display, awaited_.get());
  wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(registry_.get()), nullptr);
}

QtWayland::~QtWayland() = default;

wl_surface* QtWayland::surfaceOf(QWindow& window) {
  return static_cast<wl_surface*>(
      QGuiApplication::platformNativeInterface()->nativeResourceForWindow(
          QByteArrayLiteral("surface"), &window));
}

wl_output* QtWayland::outputOf(QScreen& screen) {
  return static_cast<wl_output*>(
      QGuiApplication::platformNativeInterface()->nativeResourceForScreen(
          QByteArrayLiteral("output"), &screen));
}

void QtWayland::roundTrip() const {
  constexpr std::chrono::milliseconds kPatience{500};
  static constexpr wl_callback_listener kListener{
      [](void* answered, wl_callback*, std::uint32_t) { *static_cast<bool*>(answered) = true; }};
  bool answered = false;
  const auto callback = makeAwaited<wl_callback>(
      *display_, [](wl_display& display) { return wl_display_sync(&display); });
  wl_callback_add_listener(callback.get(), &kListener, &answered);
  waitFor(
      *callback, [&answered] { return answered; }, kPatience);
}

void QtWayland::wait(const std::function<bool()>& fact, std::chrono::milliseconds patience) const {
  const QDeadlineTimer deadline(patience);
  while (!fact()) {
    if (wl_display_prepare_read_queue(display_, awaited_.get()) != 0) {
      if (wl_display_dispatch_queue_pending(display_, awaited_.get()) < 0) return;
      continue;
    }
    wl_display_flush(display_);
    // Qt's thread reads as well; whoever comes last reads for both.
    pollfd look{wl_display_get_fd(display_), POLLIN, 0};
    if (::poll(&look, 1, static_cast<int>(deadline.remainingTime())) > 0) {
      wl_display_read_events(display_);
    } else {
      wl_display_cancel_read(display_);
    }
    if (wl_display_dispatch_queue_pending(display_, awaited_.get()) < 0) return;
    if (deadline.hasExpired()) return;
  }
}

}  // namespace linux_desktop
