#include "desktop/linux/bus/BusCall.h"

#include <QDBusError>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <utility>

namespace linux_desktop {

QDBusMessage busCall(const QString& service, const QString& path, const QString& interface,
                     const QString& method, const QVariantList& arguments) {
  QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
  call.setArguments(arguments);
  call.setAutoStartService(false);
  return call;
}

QDBusMessage callToBus(const QString& method, const QVariantList& arguments) {
  const QString bus = QStringLiteral("org.freedesktop.DBus");
  return busCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus, method, arguments);
}

QDBusPendingCallWatcher* ask(const QDBusConnection& bus, const QDBusMessage& call, QObject* asker,
                             std::function<void(const QDBusMessage& answer)> answered, int limit) {
  auto* question = new QDBusPendingCallWatcher(bus.asyncCall(call, limit), asker);
  QObject::connect(question, &QDBusPendingCallWatcher::finished, asker,
                   [question, answered = std::move(answered)] {
                     question->deleteLater();
                     answered(question->reply());
                   });
  return question;
}

bool isError(const QDBusMessage& answer) {
  return answer.type() != QDBusMessage::ReplyMessage;
}

bool ranOut(const QDBusMessage& answer) {
  const QDBusError::ErrorType type = QDBusError(answer).type();
  return type == QDBusError::NoReply || type == QDBusError::Timeout || type == QDBusError::TimedOut;
}

std::string reasonOf(const QDBusMessage& error) {
  const QString text = error.errorMessage().simplified();
  return (text.isEmpty() ? error.errorName() : text).toStdString();
}

}  // namespace linux_desktop
