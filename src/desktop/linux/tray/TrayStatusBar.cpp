#include "desktop/linux/tray/TrayStatusBar.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QPointer>
#include <algorithm>
#include <chrono>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/tray/TrayStatusItem.h"

namespace linux_desktop {
namespace {

const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");

using namespace std::chrono_literals;

/// A panel that starts offers both protocols, the old one often first. Its icon would flash there,
/// and QSystemTrayIcon might wait for a panel that is still busy with its start.
constexpr auto kSettling = 300ms;

/// How long a tray of the old protocol may take to take an icon in.
constexpr auto kPatience = 500ms;

using State = WatcherConnection::State;

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

TrayStatusBar::TrayStatusBar(OwnWindows& windows, LegacyTray* legacyTray, PanelButton* button)
    : bus_(QDBusConnection::sessionBus()),
      windows_(windows),
      anchor_(windows),
      watcher_(bus_),
      legacy_(legacyTray),
      button_(button),
      settling_(kSettling, [this] { followTrays(); }),
      patience_(kPatience, [this] { sayThatThereIsNone(); }) {
  connect(&watcher_, &WatcherConnection::watcherAppeared, this, &TrayStatusBar::registerItems);
  connect(&watcher_, &WatcherConnection::stateChanged, this, &TrayStatusBar::followSoon);
  if (legacy_ != nullptr) {
    legacy_->setObserver(
        {.changed = [this] { followSoon(); }, .docked = [this] { followTrays(); }});
  }
  if (button_ != nullptr) button_->setObserver([this] { followTrays(); });
  anchor_.setIconGeometry([this] {
    const auto shown = std::ranges::find_if(
        items_, [](const TrayStatusItem* item) { return !item->geometry().isEmpty(); });
    return shown == items_.end() ? QRect() : (*shown)->geometry();
  });
}

TrayStatusBar::~TrayStatusBar() {
  if (legacy_ != nullptr) legacy_->setObserver({});
  if (button_ != nullptr) button_->setObserver({});
}

std::unique_ptr<platform::port::StatusItemPeer> TrayStatusBar::createStatusItem(
    platform::port::StatusItemClient& client) {
  auto item = std::make_unique<TrayStatusItem>(*this, client);
  items_.push_back(item.get());
  if (isOnPanel()) item->useButton(button_);
  if (!watcher_.owner().isEmpty()) item->registerWith(watcher_.owner());
  // After the caller has given the item its picture.
  QMetaObject::invokeMethod(this, &TrayStatusBar::followTrays, Qt::QueuedConnection);
  return item;
}

void TrayStatusBar::forget(const TrayStatusItem& item) {
  std::erase(items_, &item);
}

void TrayStatusBar::registerItems() {
  anchor_.forgetClick();
  shownBy(watcher_.owner());
  for (TrayStatusItem* item : items_) item->registerWith(watcher_.owner());
}

bool TrayStatusBar::wantsXEmbed() const {
  const State state = watcher_.state();
  return legacy_ != nullptr && legacy_->isRunning() && !isOnPanel() &&
         (state == State::NoWatcher || state == State::NoHost);
}

/// What goes is followed at once, and so is what the very first look finds.
void TrayStatusBar::followSoon() {
  const bool mayBeStarting = saidNone_ || hasTray_;
  if (wantsXEmbed() && mayBeStarting) {
    settling_.start();
  } else {
    followTrays();
  }
}

void TrayStatusBar::followTrays() {
  if (watcher_.state() == State::Asking && !isOnPanel()) return;
  settling_.stop();
  patience_.stop();
  for (TrayStatusItem* item : items_) item->useButton(isOnPanel() ? button_ : nullptr);
  const bool xembed = wantsXEmbed();
  for (TrayStatusItem* item : items_) item->useXEmbed(xembed);
  const bool isInATray = watcher_.state() == State::Ready || (xembed && legacy_->isDocked());
  const bool isShown = isOnPanel() ? button_->isThere() : isInATray;
  setTray(isShown, isOnPanel() && !isShown);
  if (hasTray_ || isComing_) return;
  if (xembed) {
    patience_.start();
  } else {
    sayThatThereIsNone();
  }
}

void TrayStatusBar::setTray(bool hasTray, bool isComing) {
  if (hasTray == hasTray_ && isComing == isComing_) return;
  hasTray_ = hasTray;
  isComing_ = isComing;
  Q_EMIT trayChanged();
}

bool TrayStatusBar::isComing() {
  if (hasTray_ && !hasLooked_ && anchor_.isGuess()) lookForPointer();
  return isComing_ || isLooking_;
}

void TrayStatusBar::lookForPointer() {
  hasLooked_ = true;
  isLooking_ = true;
  windows_.findPointer([this, alive = QPointer(this)](std::optional<QPoint> found) {
    if (!alive) return;
    isLooking_ = false;
    anchor_.rememberPointer(found);
    Q_EMIT trayChanged();
  });
}

void TrayStatusBar::sayThatThereIsNone() {
  if (std::exchange(saidNone_, true)) return;
  const bool hangs = wantsXEmbed() || watcher_.state() == State::Silent;
  qCWarning(lcTray,
            "%s: the icon appears once one is there; until then the panel opens as a window",
            hangs ? "the tray does not answer" : "no tray is running");
}

void TrayStatusBar::shownBy(const QString& host) {
  if (host == host_ || host.isEmpty()) return;
  host_ = host;
  ask(bus_, callToBus("GetConnectionUnixProcessID", {host}), this,
      [this, host](const QDBusMessage& answer) {
        const QDBusReply<uint> pid = answer;
        if (host == host_ && pid.isValid()) anchor_.setHostProcess(pid.value());
      });
}

}  // namespace linux_desktop
