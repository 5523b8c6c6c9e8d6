#include "desktop/linux/process/BusName.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QtGlobal>

#include "desktop/linux/bus/BusProbe.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {

void leaveOutHungSessionBus(std::chrono::milliseconds patience) {
  if (!BusProbe::hangs(BusProbe::Bus::Session, patience)) return;
  qCWarning(lcProcess,
            "the session bus does not answer: no notifications can be silenced, and only trays of "
            "the old kind show the icon, until Calmdeck is started again");
  // No transport has this name, so every library gives up at once.
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
}

namespace {

// D-Bus's DBUS_NAME_FLAG_DO_NOT_QUEUE and DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER.
constexpr quint32 kDoNotQueue = 4;
constexpr quint32 kPrimaryOwner = 1;

void report(const QString& name, const QDBusPendingReply<quint32>& reply) {
  if (reply.isError()) {
    qCDebug(lcProcess) << "No name" << name << "on the bus:" << reply.error().message();
  } else if (reply.value() != kPrimaryOwner) {
    qCDebug(lcProcess) << "The name" << name << "belongs to another program";
  }
}

}  // namespace

// QDBusConnection::registerService would wait for the answer.
void requestBusName(const QDBusConnection& bus, const QString& name) {
  if (!bus.isConnected()) {
    qCDebug(lcProcess) << "No session bus:" << name << "is not registered";
    return;
  }
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
      QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
  call << name << kDoNotQueue;
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), QCoreApplication::instance());
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                   [name](QDBusPendingCallWatcher* finished) {
                     report(name, *finished);
                     finished->deleteLater();
                   });
}

}  // namespace linux_desktop
