#include "desktop/linux/tray/WatcherConnection.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <chrono>
#include <climits>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 500ms;

const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");

}  // namespace

WatcherConnection::WatcherConnection(QDBusConnection connection)
    : connection_(std::move(connection)) {
  patience_.setSingleShot(true);
  patience_.setInterval(kPatience);
  connect(&patience_, &QTimer::timeout, this, [this] {
    if (state_ == State::Asking) setState(owner_.isEmpty() ? State::NoWatcher : State::Silent);
  });
  if (!connection_.isConnected()) {
    state_ = State::NoWatcher;
    return;
  }
  auto* owners = new QDBusServiceWatcher(kWatcher, connection_,
                                         QDBusServiceWatcher::WatchForOwnerChange, this);
  connect(owners, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString&, const QString& owner) { takeOwner(owner); });
  connection_.connect(kWatcher, kWatcherPath, kWatcher, "StatusNotifierHostRegistered", this,
                      SLOT(hostAppeared()));
  connection_.connect(kWatcher, kWatcherPath, kWatcher, "StatusNotifierHostUnregistered", this,
                      SLOT(hostDisappeared()));
  lookForOwner();
}

void WatcherConnection::lookForOwner() {
  QDBusMessage call = QDBusMessage::createMethodCall(
      "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner");
  call.setArguments({kWatcher});
  patience_.start();
  auto* reply = new QDBusPendingCallWatcher(connection_.asyncCall(call, INT_MAX), this);
  connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
    reply->deleteLater();
    const QDBusPendingReply<QString> owner = *reply;
    // A change of owner that came first knows better.
    if (owner_.isEmpty()) takeOwner(owner.isError() ? QString() : owner.value());
  });
}

void WatcherConnection::takeOwner(const QString& owner) {
  qCDebug(lcTray) << "the watcher is" << owner;
  owner_ = owner;
  patience_.stop();
  if (owner_.isEmpty()) {
    setState(State::NoWatcher);
    return;
  }
  setState(State::Asking);
  Q_EMIT watcherAppeared();
  askForHost();
}

void WatcherConnection::askForHost() {
  QDBusMessage call = QDBusMessage::createMethodCall(owner_, kWatcherPath,
                                                     "org.freedesktop.DBus.Properties", "Get");
  call.setArguments({kWatcher, "IsStatusNotifierHostRegistered"});
  call.setAutoStartService(false);
  patience_.start();
  // No time limit: the answer of a watcher that hangs tells us that it goes on.
  auto* reply = new QDBusPendingCallWatcher(connection_.asyncCall(call, INT_MAX), this);
  connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply, asked = owner_] {
    reply->deleteLater();
    if (asked != owner_) return;
    const QDBusPendingReply<QDBusVariant> answer = *reply;
    // A watcher without the property leaves the question open; then there is most likely a host.
    const bool hasHost = answer.isError() || answer.value().variant().toBool();
    setState(hasHost ? State::Ready : State::NoHost);
  });
}

void WatcherConnection::hostAppeared() {
  if (!owner_.isEmpty()) setState(State::Ready);
}

void WatcherConnection::hostDisappeared() {
  if (!owner_.isEmpty()) askForHost();
}

void WatcherConnection::setState(State state) {
  if (state != State::Asking) patience_.stop();
  if (state == state_) return;
  state_ = state;
  qCDebug(lcTray) << "watcher state" << static_cast<int>(state_);
  Q_EMIT stateChanged();
}

}  // namespace linux_desktop
