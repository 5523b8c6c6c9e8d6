#include "desktop/linux/tray/WatcherConnection.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");

}  // namespace

WatcherConnection::WatcherConnection(QDBusConnection connection)
    : connection_(std::move(connection)), patience_(kBusPatience, [this] {
        if (state_ == State::Asking) setState(owner_.isEmpty() ? State::NoWatcher : State::Silent);
      }) {
  if (!connection_.isConnected()) {
    state_ = State::NoWatcher;
    return;
  }
  auto* owners = new QDBusServiceWatcher(kWatcher, connection_,
                                         QDBusServiceWatcher::WatchForOwnerChange, this);
  connect(owners, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString&, const QString& owner) { takeOwner(owner); });
  lookForOwner();
}

void WatcherConnection::lookForOwner() {
  patience_.start();
  ask(connection_, callToBus("GetNameOwner", {kWatcher}), this, [this](const QDBusMessage& answer) {
    // A change of owner that came first knows better.
    if (owner_.isEmpty()) takeOwner(QDBusReply<QString>(answer).value());
  });
}

void WatcherConnection::takeOwner(const QString& owner) {
  qCDebug(lcTray) << "the watcher is" << owner;
  owner_ = owner;
  patience_.stop();
  hostComes_.reset();
  hostGoes_.reset();
  if (owner_.isEmpty()) return setState(State::NoWatcher);
  const QString host = QStringLiteral("StatusNotifierHost");
  hostComes_.emplace(connection_,
                     BusSignal::Source{owner_, kWatcherPath, kWatcher, host + "Registered"},
                     [this](const QDBusMessage&) { setState(State::Ready); });
  hostGoes_.emplace(connection_,
                    BusSignal::Source{owner_, kWatcherPath, kWatcher, host + "Unregistered"},
                    [this](const QDBusMessage&) { askForHost(); });
  setState(State::Asking);
  Q_EMIT watcherAppeared();
  askForHost();
}

void WatcherConnection::askForHost() {
  patience_.start();
  const QDBusMessage call = busCall(owner_, kWatcherPath, "org.freedesktop.DBus.Properties", "Get",
                                    {kWatcher, "IsStatusNotifierHostRegistered"});
  ask(connection_, call, this, [this, asked = owner_](const QDBusMessage& answer) {
    if (asked != owner_) return;
    const QDBusReply<QDBusVariant> value = answer;
    // A watcher without the property leaves the question open; then there is most likely a host.
    const bool hasHost = !value.isValid() || value.value().variant().toBool();
    setState(hasHost ? State::Ready : State::NoHost);
  });
}

void WatcherConnection::setState(State state) {
  if (state != State::Asking) patience_.stop();
  if (state == state_) return;
  state_ = state;
  qCDebug(lcTray) << "watcher state" << static_cast<int>(state_);
  Q_EMIT stateChanged();
}

}  // namespace linux_desktop
