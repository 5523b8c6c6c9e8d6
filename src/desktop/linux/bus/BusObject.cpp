#include "desktop/linux/bus/BusObject.h"

#include <QCoreApplication>
#include <QDBusReply>
#include <QDBusVariant>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

QString described(const BusInterface::Types& types, const char* direction) {
  QString text;
  for (const QString& type : types) {
    text += QStringLiteral("<arg type=\"%1\"%2/>").arg(type, QLatin1String(direction));
  }
  return text;
}

/// The <interface> element that introspection shows.
QString described(const BusInterface& interface) {
  QString text = QStringLiteral("<interface name=\"%1\">\n").arg(interface.name);
  for (const auto& [name, property] : interface.properties) {
    text += QStringLiteral("<property name=\"%1\" type=\"%2\" access=\"read\"/>\n")
                .arg(name, property.type);
  }
  for (const auto& [name, method] : interface.methods) {
    text += QStringLiteral("<method name=\"%1\">%2%3</method>\n")
                .arg(name, described(method.taken, " direction=\"in\""),
                     described(method.returned, " direction=\"out\""));
  }
  for (const auto& [name, types] : interface.emitted) {
    text += QStringLiteral("<signal name=\"%1\">%2</signal>\n").arg(name, described(types, ""));
  }
  return text + QStringLiteral("</interface>\n");
}

}  // namespace

BusObject::BusObject(QDBusConnection connection, QString path, BusInterface interface,
                     std::function<void(const QString& caller)> called)
    : connection_(std::move(connection)),
      path_(std::move(path)),
      interface_(std::move(interface)),
      called_(std::move(called)) {
  if (!connection_.registerVirtualObject(path_, this)) {
    qCWarning(lcBus, "the bus object %s cannot be offered", qUtf8Printable(path_));
  }
}

BusObject::~BusObject() {
  connection_.unregisterObject(path_);
}

void BusObject::emitSignal(const QString& name, const QVariantList& arguments) const {
  QDBusMessage signal = QDBusMessage::createSignal(path_, interface_.name, name);
  signal.setArguments(arguments);
  connection_.send(signal);
}

QString BusObject::introspect(const QString& /*path*/) const {
  return described(interface_);
}

bool BusObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  const QString asked = message.interface();
  const bool aboutProperties = asked == kProperties;
  if (!aboutProperties && asked != interface_.name && !asked.isEmpty()) return false;
  qCDebug(lcBus) << "from" << message.service() << ":" << message.member() << message.arguments();
  if (called_) called_(message.service());
  const QDBusMessage reply = aboutProperties ? answerAboutProperties(message) : answer(message);
  if (message.isReplyRequired()) connection.send(reply);
  return true;
}

QDBusMessage BusObject::answer(const QDBusMessage& call) const {
  const auto method = interface_.methods.find(call.member());
  if (method == interface_.methods.end()) {
    return call.createErrorReply(QDBusError::UnknownMethod, "No such method: " + call.member());
  }
  return call.createReply(method->second.answer(call));
}

QDBusMessage BusObject::answerAboutProperties(const QDBusMessage& call) const {
  const QVariantList arguments = call.arguments();
  if (call.member() == "GetAll") return call.createReply(allProperties());
  if (call.member() != "Get" || arguments.size() != 2) {
    return call.createErrorReply(QDBusError::PropertyReadOnly, "Properties can only be read");
  }
  const auto property = interface_.properties.find(arguments[1].toString());
  if (property == interface_.properties.end()) {
    return call.createErrorReply(QDBusError::UnknownProperty,
                                 "No such property: " + arguments[1].toString());
  }
  return call.createReply(QVariant::fromValue(QDBusVariant(property->second.read())));
}

QVariantMap BusObject::allProperties() const {
  QVariantMap all;
  for (const auto& [name, property] : interface_.properties) all.insert(name, property.read());
  return all;
}

namespace {

// D-Bus's DBUS_NAME_FLAG_DO_NOT_QUEUE and DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER.
constexpr quint32 kDoNotQueue = 4;
constexpr quint32 kPrimaryOwner = 1;

void report(const QString& name, const QDBusReply<quint32>& reply) {
  if (!reply.isValid()) {
    qCDebug(lcBus) << "No name" << name << "on the bus:" << reply.error().message();
  } else if (reply.value() != kPrimaryOwner) {
    qCDebug(lcBus) << "The name" << name << "belongs to another program";
  }
}

}  // namespace

// QDBusConnection::registerService would wait for the answer.
void requestBusName(const QDBusConnection& bus, const QString& name) {
  if (!bus.isConnected()) {
    qCDebug(lcBus) << "No session bus:" << name << "is not registered";
    return;
  }
  ask(bus, callToBus(QStringLiteral("RequestName"), {name, kDoNotQueue}),
      QCoreApplication::instance(), [name](const QDBusMessage& answer) { report(name, answer); });
}

}  // namespace linux_desktop
