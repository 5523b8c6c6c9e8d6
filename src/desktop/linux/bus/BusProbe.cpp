// GIO first: it has a member that is called as one of Qt's keywords.
#include <gio/gio.h>

#include <QtGlobal>
#include <future>
#include <string>
#include <thread>
#include <utility>

#include "desktop/linux/bus/BusProbe.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

constexpr auto kAsAnyClient = static_cast<GDBusConnectionFlags>(
    G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);

struct Release {
  void operator()(void* object) const { g_object_unref(object); }
  void operator()(gchar* text) const { g_free(text); }
};
using Text = std::unique_ptr<gchar, Release>;
using Connection = std::unique_ptr<GDBusConnection, Release>;
using Cancellable = std::unique_ptr<GCancellable, Release>;

std::string addressOf(BusProbe::Bus bus) {
  const GBusType type = bus == BusProbe::Bus::Session ? G_BUS_TYPE_SESSION : G_BUS_TYPE_SYSTEM;
  const Text found(g_dbus_address_get_for_bus_sync(type, nullptr, nullptr));
  // GLib ends the process over an address that is none at all.
  return found ? found.get() : "nowhere:";
}

/// A thread of GLib's that has nothing to do would wake a quarter of a minute later, only to end.
void keepIdleThreadsAsleep() {
  g_thread_pool_set_max_idle_time(0);
}

}  // namespace

struct BusProbe::Attempt {
  explicit Attempt(std::function<void(bool)> whoHears) : heard(std::move(whoHears)) {}
  ~Attempt() { g_cancellable_cancel(cancellable.get()); }
  Attempt(const Attempt&) = delete;
  Attempt& operator=(const Attempt&) = delete;

  static void finished(GObject* /*source*/, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<std::weak_ptr<Attempt>> attempt(
        static_cast<std::weak_ptr<Attempt>*>(data));
    const bool answers =
        Connection(g_dbus_connection_new_for_address_finish(result, nullptr)) != nullptr;
    if (const auto living = attempt->lock()) living->heard(answers);
  }

  std::function<void(bool)> heard;
  Cancellable cancellable{g_cancellable_new()};
};

BusProbe::BusProbe(Bus bus, std::function<void(bool answers)> heard)
    : attempt_(std::make_shared<Attempt>(std::move(heard))) {
  keepIdleThreadsAsleep();
  g_dbus_connection_new_for_address(addressOf(bus).c_str(), kAsAnyClient, nullptr,
                                    attempt_->cancellable.get(), &Attempt::finished,
                                    new std::weak_ptr<Attempt>(attempt_));
}

BusProbe::~BusProbe() = default;

namespace {

/// Needs no application object.
bool sessionBusHangs(std::chrono::milliseconds patience) {
  keepIdleThreadsAsleep();
  const std::shared_ptr<GCancellable> limit(g_cancellable_new(), g_object_unref);
  std::promise<void> done;
  const std::future<void> heard = done.get_future();
  // The thread is left behind, so it owns what it uses.
  std::thread([limit, promise = std::move(done)]() mutable {
    Connection(g_dbus_connection_new_for_address_sync(addressOf(BusProbe::Bus::Session).c_str(),
                                                      kAsAnyClient, nullptr, limit.get(), nullptr))
        .reset();
    promise.set_value();
  }).detach();
  const bool hangs = heard.wait_for(patience) == std::future_status::timeout;
  g_cancellable_cancel(limit.get());
  return hangs;
}

}  // namespace

void leaveOutHungSessionBus(std::chrono::milliseconds patience) {
  if (!sessionBusHangs(patience)) return;
  qCWarning(lcBus,
            "the session bus does not answer: no notifications can be silenced, and only trays of "
            "the old kind show the icon, until Calmdeck is started again");
  // No transport has this name, so every library gives up at once.
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
}

}  // namespace linux_desktop
