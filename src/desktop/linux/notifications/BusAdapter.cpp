#include "desktop/linux/notifications/BusAdapter.h"

#include <QDBusError>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <algorithm>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {

QDBusMessage busCall(const QString& service, const QString& path, const QString& interface,
                     const QString& method, const QVariantList& arguments) {
  QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
  call.setArguments(arguments);
  call.setAutoStartService(false);
  return call;
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

BusAdapter::BusAdapter(QDBusConnection bus, const NotificationDaemonIdentity& daemon)
    : bus_(std::move(bus)), patience_(daemon.patience) {
  hanging_.setSingleShot(true);
  hanging_.setInterval(kBusPatience);
  hanging_.callOnTimeout(this, [name = daemon.name] {
    qCWarning(lcNotifications,
              "%s does not answer; Do Not Disturb will be what was asked for last when it does",
              qPrintable(name));
  });
}

void BusAdapter::settle() {
  if (!state_ && firstRead_) firstRead_->waitForFinished();
}

void BusAdapter::readFirst() {
  const int left = std::max(1, static_cast<int>(patience_.remainingTime()));
  firstRead_ = ask(
      bus_, stateQuestion(), this,
      [this](const QDBusMessage& answer) { ranOut(answer) ? read() : takeAnswer(answer); }, left);
}

void BusAdapter::read() {
  ask(bus_, stateQuestion(), this, [this](const QDBusMessage& answer) { takeAnswer(answer); });
}

void BusAdapter::takeAnswer(const QDBusMessage& answer) {
  const std::optional<bool> on = stateIn(answer);
  if (on) return heard(*on);
  qCWarning(lcNotifications, "Do Not Disturb cannot be read: %s",
            qPrintable(answer.errorMessage()));
}

void BusAdapter::write(const QDBusMessage& change, bool on,
                       std::function<void(const QDBusMessage&)> done) {
  state_ = on;
  ++unansweredWrites_;
  if (!hanging_.isActive()) hanging_.start();
  ask(bus_, change, this, [this, done = std::move(done)](const QDBusMessage& answer) {
    if (--unansweredWrites_ == 0) hanging_.stop();
    if (done) done(answer);
    if (!isError(answer)) return;
    qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s",
              qPrintable(answer.errorMessage()));
    read();
  });
}

void BusAdapter::heard(bool on) {
  // A peer answers and tells in order, so what comes before the answer to a write is older than it.
  if (unansweredWrites_ == 0) state_ = on;
}

}  // namespace linux_desktop
