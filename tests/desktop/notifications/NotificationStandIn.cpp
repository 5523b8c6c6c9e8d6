#include "NotificationStandIn.h"

#include <QDBusArgument>
#include <utility>

namespace {

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

}  // namespace

NotificationStandIn::NotificationStandIn(const QString& address, QString name)
    : name_(std::move(name)), bus_(QDBusConnection::connectToBus(address, name_)) {
  bus_.registerVirtualObject(kPath, this);
  bus_.registerService(kName);
}

NotificationStandIn::~NotificationStandIn() {
  bus_.unregisterObject(kPath);
  QDBusConnection::disconnectFromBus(name_);
}

bool NotificationStandIn::handleMessage(const QDBusMessage& message,
                                        const QDBusConnection& /*bus*/) {
  if (message.member() == "GetServerInformation") {
    return bus_.send(message.createReply(QVariantList{"stand-in", "nobody", "1", "1.2"}));
  }
  if (message.member() == "GetCapabilities") {
    return bus_.send(message.createReply(QVariantList{QStringList{"body", "body-markup"}}));
  }
  notify(message);
  return true;
}

void NotificationStandIn::notify(const QDBusMessage& message) {
  const QVariantList arguments = message.arguments();
  Notification got{.application = arguments.value(0).toString(),
                   .replaces = arguments.value(1).toUInt(),
                   .icon = arguments.value(2).toString(),
                   .summary = arguments.value(3).toString(),
                   .body = arguments.value(4).toString(),
                   .hints = qdbus_cast<QVariantMap>(arguments.value(6))};
  got.id = shown.contains(got.replaces) ? got.replaces : ++lastId_;
  calls.push_back(got);
  if (hangs) return owed_.push_back(message);
  if (refuses) {
    bus_.send(message.createErrorReply("org.calmdeck.Refused", "no more of these"));
    return;
  }
  shown.insert(got.id);
  bus_.send(message.createReply(QVariantList{got.id}));
}

void NotificationStandIn::release() {
  hangs = false;
  for (const QDBusMessage& message : std::exchange(owed_, {})) {
    shown.insert(calls.back().id);
    bus_.send(message.createReply(QVariantList{calls.back().id}));
  }
}

void NotificationStandIn::close(uint id) {
  shown.erase(id);
  QDBusMessage signal = QDBusMessage::createSignal(kPath, kName, "NotificationClosed");
  signal.setArguments({id, 1U});
  bus_.send(signal);
}
