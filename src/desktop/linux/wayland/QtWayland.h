#pragma once

#include <QWindow>
#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/linux/wayland/WaylandConnection.h"
#include "desktop/linux/wayland/WaylandProxy.h"

class QScreen;

namespace linux_desktop {

/// Qt's own connection to the compositor, for what nobody can ask for but who owns the surface:
/// Qt's windows have theirs there, and the keyboard types into them there. Qt hands the events of
/// what is bound here out with its own, on the main thread. Main thread only.
class QtWayland {
 public:
  /// Null where Qt is not on Wayland. Needs the application object, and is made before any window.
  [[nodiscard]] static std::unique_ptr<QtWayland> open();
  ~QtWayland();
  QtWayland(const QtWayland&) = delete;
  QtWayland& operator=(const QtWayland&) = delete;

  /// The first of that interface that was there at the start; null where there is none.
  template <class Object>
  [[nodiscard]] WaylandProxy<Object> bindFirst(const wl_interface& interface,
                                               std::uint32_t version) const {
    return bindAt<Object>(*registry_, interface, version);
  }
  /// The same; it answers to waitFor() first.
  template <class Object>
  [[nodiscard]] WaylandProxy<Object> bindAwaited(const wl_interface& interface,
                                                 std::uint32_t version) const {
    return makeAwaited<Object>(*registry_, [&](wl_registry& registry) {
      return bindAt<Object>(registry, interface, version).release();
    });
  }

  /// Waits until the compositor has done what was asked for so far, for half a second at most.
  void roundTrip() const;

  /// Null while the window has none: before it is created, and after it was hidden.
  [[nodiscard]] static wl_surface* surfaceOf(QWindow& window);
  [[nodiscard]] static wl_output* outputOf(QScreen& screen);

  /// What `make` makes of `factory` answers to waitFor() first.
  template <class Object, class Factory, class Make>
  [[nodiscard]] WaylandProxy<Object> makeAwaited(Factory& factory, const Make& make) const {
    auto* wrapper = static_cast<Factory*>(wl_proxy_create_wrapper(&factory));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), awaited_.get());
    WaylandProxy<Object> made(make(*wrapper));
    wl_proxy_wrapper_destroy(wrapper);
    return made;
  }
  /// Hands out what comes for `object`, made by makeAwaited(), until `fact` holds, for so long at
  /// most; from then on that is Qt's to hand out. False: it does not hold.
  template <class Object>
  bool waitFor(Object& object, const std::function<bool()>& fact,
               std::chrono::milliseconds patience) const {
    wait(fact, patience);
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(&object), nullptr);
    // What has come meanwhile.
    wl_display_dispatch_queue_pending(display_, awaited_.get());
    return fact();
  }

 private:
  struct FreeQueue {
    void operator()(wl_event_queue* queue) const { wl_event_queue_destroy(queue); }
  };

  explicit QtWayland(wl_display* display);
  template <class Object>
  [[nodiscard]] WaylandProxy<Object> bindAt(wl_registry& registry, const wl_interface& interface,
                                            std::uint32_t version) const {
    const auto global = std::ranges::find(globals_, interface.name, &WaylandGlobal::interface);
    if (global == globals_.end()) return nullptr;
    return WaylandProxy<Object>(static_cast<Object*>(
        wl_registry_bind(&registry, global->name, &interface, std::min(global->version, version))));
  }
  void wait(const std::function<bool()>& fact, std::chrono::milliseconds patience) const;

  wl_display* display_;
  std::unique_ptr<wl_event_queue, FreeQueue> awaited_;
  WaylandProxy<wl_registry> registry_;
  std::vector<WaylandGlobal> globals_;
};

}  // namespace linux_desktop
