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
  signals_.clear();
  if (!changed) return;
  const auto tell = [changed = std::move(changed)](const QDBusMessage& signal) {
    const QVariantList values = signal.arguments();
    Change change{values.value(1).toString(), std::nullopt};
    if (values.size() > 2) change.value = values[2].value<QDBusVariant>().variant();
    changed(change);
  };
  for (const QString& name :
       {QStringLiteral("PropertyChanged"), QStringLiteral("PropertyRemoved")}) {
    signals_.push_back(std::make_unique<BusSignal>(
        QDBusConnection::sessionBus(), BusSignal::Source{{}, kPath, kInterface, name, {channel_}},
        tell));
  }
}

}  // namespace linux_desktop
