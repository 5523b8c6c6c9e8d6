#include "desktop/linux/notifications/NotificationDaemon.h"

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <algorithm>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kBus = QStringLiteral("org.freedesktop.DBus");
const QString kBusPath = QStringLiteral("/org/freedesktop/DBus");

QString textAt(const QDBusMessage& answer, qsizetype position) {
  return answer.arguments().value(position).toString();
}

}  // namespace

NotificationDaemon::NotificationDaemon(QDBusConnection bus) : bus_(std::move(bus)) {
  if (!bus_.isConnected()) {
    state_ = State::None;
    return;
  }
  auto* owners =
      new QDBusServiceWatcher(kNotifications, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
  connect(owners, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString&, const QString& owner) { takeOwner(owner); });
  startableChanged_.emplace(bus_,
                            BusSignal::Source{{}, kBusPath, kBus, "ActivatableServicesChanged"},
                            [this](const QDBusMessage&) {
                              if (state_ == State::None) takeOwner({});
                            });
  lookForOwner();
}

void NotificationDaemon::settle() {
  while (state_ == State::Asking && open_) open_->waitForFinished();
}

void NotificationDaemon::lookForOwner() {
  identity_.patience = QDeadlineTimer(kBusPatience);
  // A change of owner that comes first knows better, and makes this one void.
  question(callToBus("GetNameOwner", {kNotifications}), [this](const QDBusMessage& answer) {
    takeOwner(isError(answer) ? QString() : textAt(answer, 0));
  });
}

void NotificationDaemon::takeOwner(const QString& owner) {
  if (!owner.isEmpty() && owner == identity_.owner) return;
  qCDebug(lcNotifications) << "notifications are shown by" << owner;
  ++owners_;
  identity_ = {};
  identity_.owner = owner;
  identity_.patience = QDeadlineTimer(kBusPatience);
  setState(State::Asking);
  owner.isEmpty() ? askWhatCanBeStarted() : askWhoItIs();
}

void NotificationDaemon::askWhatCanBeStarted() {
  question(callToBus("ListActivatableNames"), [this](const QDBusMessage& answer) {
    canBeStarted_ = answer.arguments().value(0).toStringList().contains(kNotifications);
    setState(State::None);
  });
}

void NotificationDaemon::askWhoItIs() {
  askDaemon("GetServerInformation", [this](const QDBusMessage& answer) {
    identity_.name = textAt(answer, 0);
    identity_.vendor = textAt(answer, 1);
    askDaemon("GetCapabilities", [this](const QDBusMessage& can) {
      identity_.capabilities = can.arguments().value(0).toStringList();
      setState(State::Known);
    });
  });
}

void NotificationDaemon::askDaemon(const QString& method,
                                   std::function<void(const QDBusMessage&)> take) {
  question(busCall(identity_.owner, kNotificationsPath, kNotifications, method),
           [this, method, take = std::move(take)](const QDBusMessage& answer) {
             if (!ranOut(answer)) return take(answer);
             qCWarning(
                 lcNotifications,
                 "what shows notifications does not answer; it will be switched when it does");
             // Without a limit now: the answer of a daemon that hangs tells that it goes on.
             setState(State::Silent);
             askDaemon(method, take);
           });
}

void NotificationDaemon::question(const QDBusMessage& call,
                                  std::function<void(const QDBusMessage&)> answered) {
  const int left = std::max(1, static_cast<int>(identity_.patience.remainingTime()));
  open_ = ask(
      bus_, call, this,
      [this, asked = owners_, answered = std::move(answered)](const QDBusMessage& answer) {
        if (asked == owners_) answered(answer);
      },
      state_ == State::Silent ? kNoLimit : left);
}

void NotificationDaemon::setState(State state) {
  state_ = state;
  Q_EMIT changed();
}

}  // namespace linux_desktop
