#include "desktop/linux/bus/BusObject.h"

#include <QCoreApplication>
#include <QDBusReply>
#include <QDBusVariant>
#include <algorithm>
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

QDBusMessage answer(const QDBusMessage& call, const BusInterface& interface) {
  const auto method = interface.methods.find(call.member());
  if (method == interface.methods.end()) {
    return call.createErrorReply(QDBusError::UnknownMethod, "No such method: " + call.member());
  }
  return call.createReply(method->second.answer(call));
}

QVariantMap allProperties(const BusInterface& interface) {
  QVariantMap all;
  for (const auto& [name, property] : interface.properties) all.insert(name, property.read());
  return all;
}

QDBusMessage answerAboutProperties(const QDBusMessage& call, const BusInterface& interface) {
  const QVariantList arguments = call.arguments();
  if (call.member() == "GetAll") return call.createReply(allProperties(interface));
  if (call.member() != "Get" || arguments.size() != 2) {
    return call.createErrorReply(QDBusError::PropertyReadOnly, "Properties can only be read");
  }
  const auto property = interface.properties.find(arguments[1].toString());
  if (property == interface.properties.end()) {
    return call.createErrorReply(QDBusError::UnknownProperty,
                                 "No such property: " + arguments[1].toString());
  }
  return call.createReply(QVariant::fromValue(QDBusVariant(property->second.read())));
}

}  // namespace

BusObject::BusObject(QDBusConnection connection, QString path, std::vector<BusInterface> interfaces,
                     std::function<void(const QString& caller)> called)
    : connection_(std::move(connection)),
      path_(std::move(path)),
      interfaces_(std::move(interfaces)),
      called_(std::move(called)) {
  if (!connection_.registerVirtualObject(path_, this)) {
    qCWarning(lcBus, "the bus object %s cannot be offered", qUtf8Printable(path_));
  }
}

BusObject::~BusObject() {
  connection_.unregisterObject(path_);
}

void BusObject::emitSignal(const QString& name, const QVariantList& arguments) const {
  QDBusMessage signal = QDBusMessage::createSignal(path_, interfaces_.front().name, name);
  signal.setArguments(arguments);
  connection_.send(signal);
}

void BusObject::emitPropertyChanged(const QString& interface, const QString& property) const {
  const QVariant value = interfaceOf(interface)->properties.at(property).read();
  QDBusMessage signal = QDBusMessage::createSignal(path_, kProperties, "PropertiesChanged");
  signal << interface << QVariantMap{{property, value}} << QStringList{};
  connection_.send(signal);
}

QString BusObject::introspect(const QString& /*path*/) const {
  QString text;
  for (const BusInterface& interface : interfaces_) text += described(interface);
  return text;
}

const BusInterface* BusObject::interfaceOf(const QString& name) const {
  if (name.isEmpty()) return &interfaces_.front();
  const auto found = std::ranges::find(interfaces_, name, &BusInterface::name);
  return found == interfaces_.end() ? nullptr : &*found;
}

bool BusObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  const bool aboutProperties = message.interface() == kProperties;
  const BusInterface* interface =
      interfaceOf(aboutProperties ? message.arguments().value(0).toString() : message.interface());
  if (interface == nullptr) return false;
  qCDebug(lcBus) << "from" << message.service() << ":" << message.member() << message.arguments();
  if (called_) called_(message.service());
  const QDBusMessage reply =
      aboutProperties ? answerAboutProperties(message, *interface) : answer(message, *interface);
  if (message.isReplyRequired()) connection.send(reply);
  return true;
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
