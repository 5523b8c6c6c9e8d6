#include "desktop/updates/PackageKitStandIn.h"

#include <QDBusObjectPath>
#include <utility>

namespace {

constexpr const char* kService = "org.freedesktop.PackageKit";
constexpr uint kSuccess = 1;
constexpr uint kFailed = 2;

}  // namespace

PackageKitStandIn::PackageKitStandIn(const QString& address, QString name)
    : name_(std::move(name)), bus_(QDBusConnection::connectToBus(address, name_)) {
  bus_.registerVirtualObject("/", this, QDBusConnection::SubPath);
  bus_.registerService(kService);
}

PackageKitStandIn::~PackageKitStandIn() {
  bus_.unregisterService(kService);
  bus_.unregisterObject("/", QDBusConnection::UnregisterTree);
  QDBusConnection::disconnectFromBus(name_);
}

bool PackageKitStandIn::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
  QStringList words{message.member()};
  for (const QVariant& argument : message.arguments()) {
    const QStringList list = argument.toStringList();
    words << (list.isEmpty() ? QStringList{argument.toString()} : list);
  }
  calls << words.join(QLatin1Char(' '));
  if (message.member() == QLatin1String("CreateTransaction")) {
    createTransaction(message);
  } else if (message.member() == QLatin1String("GetUpdates")) {
    getUpdates(message);
  } else {
    bus_.send(message.createReply());
  }
  return true;
}

void PackageKitStandIn::createTransaction(const QDBusMessage& message) {
  if (silence == Silence::AtCreateTransaction) return;
  const QString path = "/" + QString::number(++transactions_) + "_transaction";
  bus_.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
}

void PackageKitStandIn::getUpdates(const QDBusMessage& message) {
  if (silence == Silence::AtGetUpdates) return;
  if (refuses) {
    bus_.send(
        message.createErrorReply(QStringLiteral("org.example.Refused"), "It is not allowed."));
    return;
  }
  bus_.send(message.createReply());
  for (const QString& id : packages) tell(message, "Package", {kind, id, "a summary"});
  if (trouble) tell(message, "ErrorCode", {1U, *trouble});
  tell(message, "Finished", {trouble ? kFailed : kSuccess, 12U});
}

void PackageKitStandIn::tell(const QDBusMessage& transaction, const QString& signal,
                             const QVariantList& arguments) {
  QDBusMessage message =
      QDBusMessage::createSignal(transaction.path(), transaction.interface(), signal);
  message.setArguments(arguments);
  bus_.send(message);
}
