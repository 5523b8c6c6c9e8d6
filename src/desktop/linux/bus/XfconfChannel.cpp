#include "desktop/linux/bus/XfconfChannel.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusVariant>
#include <algorithm>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kPath = QStringLiteral("/org/xfce/Xfconf");
const QString kInterface = QStringLiteral("org.xfce.Xfconf");

/// The service's word for a channel or a branch in which nothing was ever set.
bool meansEmpty(const QDBusMessage& error) {
  return error.errorName().startsWith(QLatin1String("org.xfce.Xfconf.Error.")) &&
         error.errorName().endsWith(QLatin1String("NotFound"));
}

}  // namespace

QDBusMessage XfconfChannel::question(const QString& base) const {
  return service_.method(kPath, kInterface, QStringLiteral("GetAllProperties"), {channel_, base});
}

std::optional<QVariantMap> XfconfChannel::propertiesIn(const QDBusMessage& answer) {
  if (!isError(answer)) return qdbus_cast<QVariantMap>(answer.arguments().value(0));
  if (meansEmpty(answer)) return QVariantMap();
  qCDebug(lcBus) << "xfconf:" << answer.errorMessage();
  return std::nullopt;
}

QDBusMessage XfconfChannel::order(const Change& change) const {
  if (!change.value) {
    return service_.method(kPath, kInterface, QStringLiteral("ResetProperty"),
                           {channel_, change.property, false});
  }
  return service_.method(
      kPath, kInterface, QStringLiteral("SetProperty"),
      {channel_, change.property, QVariant::fromValue(QDBusVariant(*change.value))});
}

std::optional<QVariantMap> XfconfChannel::read(const QString& base,
                                               const QDeadlineTimer& deadline) {
  return propertiesIn(service_.call(question(base), deadline));
}

std::vector<QDBusMessage> XfconfChannel::ordersFor(const std::vector<Change>& changes) const {
  std::vector<QDBusMessage> orders;
  orders.reserve(changes.size());
  for (const Change& change : changes) orders.push_back(order(change));
  return orders;
}

std::optional<std::string> XfconfChannel::write(const std::vector<Change>& changes,
                                                const std::vector<Change>& undo,
                                                const QDeadlineTimer& deadline) {
  if (changes.empty()) return std::nullopt;
  const auto answers = service_.callAll(ordersFor(changes), deadline);
  const auto failed = std::ranges::find_if(answers, isError);
  if (failed == answers.end()) return std::nullopt;
  // What ran into its limit still waits in the service's queue, and so will this, behind it.
  BusPeer::send(ordersFor(undo));
  return reasonOf(*failed);
}

void XfconfChannel::setChanged(std::function<void(const Change& change)> changed) {
  const bool watched = static_cast<bool>(changed_);
  changed_ = std::move(changed);
  if (static_cast<bool>(changed_) != watched) watch(!watched);
}

void XfconfChannel::watch(bool wanted) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  // Naming the service here would make Qt ask, without a limit, who owns it.
  for (const QString& signal :
       {QStringLiteral("PropertyChanged"), QStringLiteral("PropertyRemoved")}) {
    const auto* const slot = SLOT(propertyChanged(QDBusMessage));
    if (wanted) {
      bus.connect({}, kPath, kInterface, signal, this, slot);
    } else {
      bus.disconnect({}, kPath, kInterface, signal, this, slot);
    }
  }
}

void XfconfChannel::propertyChanged(const QDBusMessage& signal) {
  const QVariantList arguments = signal.arguments();
  if (arguments.value(0).toString() != channel_ || !changed_) return;
  Change change{arguments.value(1).toString(), std::nullopt};
  if (arguments.size() > 2) change.value = arguments[2].value<QDBusVariant>().variant();
  changed_(change);
}

}  // namespace linux_desktop
