#include "desktop/linux/bus/BusPeer.h"

#include <QDBusError>
#include <QDBusPendingReply>
#include <algorithm>

namespace linux_desktop {
namespace {

QDBusMessage noAnswer(const QString& service) {
  return QDBusMessage::createError(QDBusError::NoReply,
                                   QStringLiteral("%1 does not answer").arg(service));
}

}  // namespace

QDBusMessage BusPeer::method(const QString& path, const QString& interface, const QString& name,
                             const QVariantList& arguments) const {
  return busCall(service_, path, interface, name, arguments);
}

bool BusPeer::isHung() {
  if (sign_ && sign_->isFinished()) sign_.reset();
  return sign_.has_value();
}

QDBusMessage BusPeer::call(const QDBusMessage& method, const QDeadlineTimer& deadline) {
  return callAll(std::span(&method, 1), deadline).front();
}

std::vector<QDBusMessage> BusPeer::callAll(std::span<const QDBusMessage> methods,
                                           const QDeadlineTimer& deadline) {
  const int left = static_cast<int>(deadline.remainingTime());
  if (left <= 0 || isHung()) return {methods.size(), noAnswer(service_)};
  std::vector<QDBusPendingCall> pending;
  pending.reserve(methods.size());
  for (const QDBusMessage& method : methods) {
    pending.push_back(QDBusConnection::sessionBus().asyncCall(method, left));
  }
  std::vector<QDBusMessage> answers;
  for (QDBusPendingCall& call : pending) {
    call.waitForFinished();
    const QDBusMessage answer = call.reply();
    answers.push_back(ranOut(answer) ? noAnswer(service_) : answer);
  }
  if (std::ranges::any_of(answers, ranOut)) {
    sign_ = QDBusConnection::sessionBus().asyncCall(
        method(QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Peer"),
               QStringLiteral("Ping")),
        kNoLimit);
  }
  return answers;
}

qint64 BusPeer::process(const QDeadlineTimer& deadline) const {
  BusPeer bus(QStringLiteral("org.freedesktop.DBus"));
  const QDBusPendingReply<uint> answer =
      bus.call(callToBus(QStringLiteral("GetConnectionUnixProcessID"), {service_}), deadline);
  return answer.isError() ? 0 : answer.value();
}

void BusPeer::send(std::span<const QDBusMessage> methods) {
  for (const QDBusMessage& method : methods) QDBusConnection::sessionBus().send(method);
}

}  // namespace linux_desktop
