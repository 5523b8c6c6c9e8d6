#include "bench/PauseWatch.h"

#include <cstdlib>
#include <stdexcept>

namespace bench {

namespace {

constexpr int kPatience = 2'000;  // milliseconds

}  // namespace

void PauseWatch::Release::operator()(GDBusConnection* connection) const {
  g_object_unref(connection);
}

PauseWatch::PauseWatch() {
  const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (address == nullptr) throw std::runtime_error("no session bus");
  connection_.reset(g_dbus_connection_new_for_address_sync(
      address,
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, nullptr));
  if (!connection_) throw std::runtime_error("the session bus cannot be reached");
}

bool PauseWatch::isPaused() const {
  GVariant* reply = g_dbus_connection_call_sync(
      connection_.get(), "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
      "org.freedesktop.DBus.Properties", "Get",
      g_variant_new("(ss)", "org.dunstproject.cmd0", "paused"), nullptr, G_DBUS_CALL_FLAGS_NONE,
      kPatience, nullptr, nullptr);
  if (reply == nullptr) throw std::runtime_error("dunst does not say whether it is paused");
  GVariant* value = nullptr;
  g_variant_get(reply, "(v)", &value);
  const bool paused = g_variant_get_boolean(value) != 0;
  g_variant_unref(value);
  g_variant_unref(reply);
  return paused;
}

}  // namespace bench
