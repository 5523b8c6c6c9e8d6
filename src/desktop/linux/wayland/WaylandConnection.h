#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QSocketNotifier>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "desktop/linux/wayland/WaylandProxy.h"

namespace linux_desktop {

/// Something that the compositor offers to everybody, under a number of its own.
struct WaylandGlobal {
  std::uint32_t name = 0;
  std::string interface;
  std::uint32_t version = 0;
};

/// A connection of our own to the compositor, beside Qt's: what goes wrong on it ends only what is
/// done over it. Requests are sent before the program waits, events are handed out by the main
/// loop, and nothing wakes the program but an event.
///
/// When the compositor is gone or has refused a request, one line says so, `lost` is emitted, and
/// from then on nothing comes any more. Objects that were made from it may be used and let go of as
/// before; that does nothing then. Main thread only; outlives its objects.
class WaylandConnection final : public QObject {
  Q_OBJECT

 public:
  /// Null where Qt is not on Wayland, or the compositor does not take us. Needs the application
  /// object.
  [[nodiscard]] static std::unique_ptr<WaylandConnection> open();
  ~WaylandConnection() override;
  WaylandConnection(const WaylandConnection&) = delete;
  WaylandConnection& operator=(const WaylandConnection&) = delete;

  [[nodiscard]] bool isLost() const { return lost_; }
  /// The compositor's process; 0 where nobody may know.
  [[nodiscard]] qint64 compositor() const;
  /// Those that are there now, in the order in which they came.
  [[nodiscard]] const std::vector<WaylandGlobal>& globals() const { return globals_; }

  /// In no newer version than `version`. A global that has gone in the meantime gives an object of
  /// which nothing is heard.
  template <class Object>
  [[nodiscard]] WaylandProxy<Object> bind(const WaylandGlobal& global,
                                          const wl_interface& interface, std::uint32_t version) {
    return WaylandProxy<Object>(static_cast<Object*>(wl_registry_bind(
        registry_.get(), global.name, &interface, std::min(global.version, version))));
  }
  /// The first of that interface; null where there is none.
  template <class Object>
  [[nodiscard]] WaylandProxy<Object> bindFirst(const wl_interface& interface,
                                               std::uint32_t version) {
    const auto global = std::ranges::find(globals_, interface.name, &WaylandGlobal::interface);
    return global == globals_.end() ? nullptr : bind<Object>(*global, interface, version);
  }

  /// Waits until the compositor has answered all that was asked so far, with the answers handed out
  /// meanwhile; for a second at most. False: it has not.
  bool roundTrip();
  /// Hands out what comes until `fact` holds, for so long at most. False: it does not.
  bool waitFor(const std::function<bool()>& fact, std::chrono::milliseconds patience);

 Q_SIGNALS:
  void globalCame(const linux_desktop::WaylandGlobal& global);
  void globalWent(std::uint32_t name);
  /// Never from inside a call.
  void lost();

 private:
  friend class CaughtUp;

  struct Disconnect {
    void operator()(wl_display* display) const { wl_display_disconnect(display); }
  };
  using Display = std::unique_ptr<wl_display, Disconnect>;

  explicit WaylandConnection(Display display);
  void came(const WaylandGlobal& global);
  void went(std::uint32_t name);
  /// Hands out what has come, or comes until then.
  bool dispatch(QDeadlineTimer deadline);
  void flush();
  void fail();

  Display display_;
  WaylandProxy<wl_registry> registry_;
  std::vector<WaylandGlobal> globals_;
  QSocketNotifier readable_;
  /// On only while the compositor does not read as fast as we ask.
  QSocketNotifier writable_;
  bool lost_ = false;
};

/// Calls `done` out of the event loop, once the compositor has done all that was asked before;
/// never after this has ended.
class CaughtUp {
 public:
  CaughtUp(WaylandConnection& connection, std::function<void()> done);
  CaughtUp(const CaughtUp&) = delete;
  CaughtUp& operator=(const CaughtUp&) = delete;

 private:
  std::function<void()> done_;
  WaylandProxy<wl_callback> answer_;
};

}  // namespace linux_desktop
