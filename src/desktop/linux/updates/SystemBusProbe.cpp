// GIO first: it has a member that is called as one of Qt's keywords.
#include <gio/gio.h>

#include <utility>

#include "desktop/linux/updates/SystemBusProbe.h"

namespace linux_desktop {

struct SystemBusProbe::Attempt {
  explicit Attempt(std::function<void(bool)> whoHears) : heard(std::move(whoHears)) {}
  ~Attempt() {
    g_cancellable_cancel(cancellable);
    g_object_unref(cancellable);
  }
  Attempt(const Attempt&) = delete;
  Attempt& operator=(const Attempt&) = delete;

  static void finished(GObject* /*source*/, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<std::weak_ptr<Attempt>> attempt(
        static_cast<std::weak_ptr<Attempt>*>(data));
    GDBusConnection* connection = g_dbus_connection_new_for_address_finish(result, nullptr);
    if (connection != nullptr) g_object_unref(connection);
    if (const auto living = attempt->lock()) living->heard(connection != nullptr);
  }

  std::function<void(bool)> heard;
  GCancellable* cancellable = g_cancellable_new();
};

SystemBusProbe::SystemBusProbe(std::function<void(bool answers)> heard)
    : attempt_(std::make_shared<Attempt>(std::move(heard))) {
  // A thread of GLib's that has nothing to do would wake a quarter of a minute later, only to end.
  g_thread_pool_set_max_idle_time(0);
  gchar* address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
  constexpr auto kAsAnyClient =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  g_dbus_connection_new_for_address(address, kAsAnyClient, nullptr, attempt_->cancellable,
                                    &Attempt::finished, new std::weak_ptr<Attempt>(attempt_));
  g_free(address);
}

SystemBusProbe::~SystemBusProbe() = default;

}  // namespace linux_desktop
