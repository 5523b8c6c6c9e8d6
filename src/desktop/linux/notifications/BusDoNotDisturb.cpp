#include "desktop/linux/notifications/BusDoNotDisturb.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <algorithm>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {

BusDoNotDisturb::BusDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon)
    : bus_(std::move(bus)), patience_(daemon.patience) {
  hanging_.setSingleShot(true);
  hanging_.setInterval(kBusPatience);
  hanging_.callOnTimeout(this, [name = daemon.name] {
    qCWarning(lcNotifications,
              "%s does not answer; Do Not Disturb will be what was asked for last when it does",
              qPrintable(name));
  });
}

void BusDoNotDisturb::settle() {
  if (!state_ && firstRead_) firstRead_->waitForFinished();
}

void BusDoNotDisturb::readFirst() {
  const int left = std::max(1, static_cast<int>(patience_.remainingTime()));
  firstRead_ = ask(
      bus_, stateQuestion(), this,
      [this](const QDBusMessage& answer) { ranOut(answer) ? read() : takeAnswer(answer); }, left);
}

void BusDoNotDisturb::read() {
  ask(bus_, stateQuestion(), this, [this](const QDBusMessage& answer) { takeAnswer(answer); });
}

void BusDoNotDisturb::takeAnswer(const QDBusMessage& answer) {
  const std::optional<bool> on = stateIn(answer);
  if (on) return heard(*on);
  qCWarning(lcNotifications, "Do Not Disturb cannot be read: %s",
            qPrintable(answer.errorMessage()));
}

void BusDoNotDisturb::write(const QDBusMessage& change, bool on,
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

void BusDoNotDisturb::heard(bool on) {
  // A peer answers and tells in order, so what comes before the answer to a write is older than it.
  if (unansweredWrites_ == 0) state_ = on;
}

namespace {

const QString kXfceProperty = QStringLiteral("/do-not-disturb");

}  // namespace

XfceDoNotDisturb::XfceDoNotDisturb(QDBusConnection connection,
                                   const NotificationDaemonIdentity& daemon)
    : BusDoNotDisturb(std::move(connection), daemon) {
  channel_.setChanged([this](const XfconfChannel::Change& change) {
    if (change.property == kXfceProperty) heard(change.value && change.value->toBool());
  });
  readFirst();
}

QDBusMessage XfceDoNotDisturb::stateQuestion() const {
  return channel_.question(kXfceProperty);
}

std::optional<bool> XfceDoNotDisturb::stateIn(const QDBusMessage& answer) const {
  const auto properties = XfconfChannel::propertiesIn(answer);
  return properties ? std::optional(properties->value(kXfceProperty).toBool()) : std::nullopt;
}

bool XfceDoNotDisturb::set(bool on) {
  write(channel_.order({kXfceProperty, on}), on);
  return true;
}

namespace {

const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

// From 1.12 on, dunst's `paused` stands for the levels 100 and 0, so that setting it serves every
// version.
constexpr StateProperties kDunst{"org.dunstproject.cmd0", "pauseLevel", "paused"};
constexpr StateProperties kInhibitions{"org.freedesktop.Notifications", "Inhibited"};

const QString kDesktopEntry = QStringLiteral("org.calmdeck.Calmdeck");
const QString kReason = QStringLiteral("Presentation mode");

}  // namespace

PropertyDoNotDisturb::PropertyDoNotDisturb(QDBusConnection connection,
                                           const NotificationDaemonIdentity& daemon,
                                           const StateProperties& properties)
    : BusDoNotDisturb(std::move(connection), daemon),
      owner_(daemon.owner),
      properties_(properties) {
  QDBusConnection signals_ = bus();
  signals_.connect(owner_, kPath, kProperties, "PropertiesChanged", this,
                   SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
}

QDBusMessage PropertyDoNotDisturb::toDaemon(const QString& interface, const QString& method,
                                            const QVariantList& arguments) const {
  return busCall(owner_, kPath, interface, method, arguments);
}

QDBusMessage PropertyDoNotDisturb::stateQuestion() const {
  return toDaemon(kProperties, "GetAll", {properties_.interface});
}

std::optional<bool> PropertyDoNotDisturb::stateIn(const QDBusMessage& answer) const {
  if (isError(answer)) return std::nullopt;
  return stateOf(qdbus_cast<QVariantMap>(answer.arguments().value(0)));
}

std::optional<bool> PropertyDoNotDisturb::stateOf(const QVariantMap& properties) const {
  for (const char* name : {properties_.read, properties_.otherwise}) {
    if (name != nullptr && properties.contains(name)) return properties.value(name).toUInt() > 0;
  }
  return std::nullopt;
}

void PropertyDoNotDisturb::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                             const QStringList& invalidated) {
  if (interface != properties_.interface) return;
  if (const std::optional<bool> on = stateOf(changed)) {
    heard(*on);
  } else if (!invalidated.isEmpty()) {
    read();
  }
}

DunstDoNotDisturb::DunstDoNotDisturb(QDBusConnection connection,
                                     const NotificationDaemonIdentity& daemon)
    : PropertyDoNotDisturb(std::move(connection), daemon, kDunst) {
  readFirst();
}

bool DunstDoNotDisturb::set(bool on) {
  write(toDaemon(kProperties, "Set",
                 {kDunst.interface, kDunst.otherwise, QVariant::fromValue(QDBusVariant(on))}),
        on);
  return true;
}

namespace {

const QString kSwayncPath = QStringLiteral("/org/erikreider/swaync/cc");
const QString kSwaync = QStringLiteral("org.erikreider.swaync.cc");

}  // namespace

SwayncDoNotDisturb::SwayncDoNotDisturb(QDBusConnection connection,
                                       const NotificationDaemonIdentity& daemon)
    : BusDoNotDisturb(std::move(connection), daemon), owner_(daemon.owner) {
  QDBusConnection signals_ = bus();
  signals_.connect(owner_, kSwayncPath, kSwaync, "Subscribe", this, SLOT(told(uint, bool, bool)));
  readFirst();
}

QDBusMessage SwayncDoNotDisturb::stateQuestion() const {
  return busCall(owner_, kSwayncPath, kSwaync, "GetDnd");
}

std::optional<bool> SwayncDoNotDisturb::stateIn(const QDBusMessage& answer) const {
  return isError(answer) ? std::nullopt : std::optional(answer.arguments().value(0).toBool());
}

bool SwayncDoNotDisturb::set(bool on) {
  write(busCall(owner_, kSwayncPath, kSwaync, "SetDnd", {on}), on);
  return true;
}

void SwayncDoNotDisturb::told(uint /*notifications*/, bool on, bool /*isOpen*/) {
  heard(on);
}

namespace {

const QString kBudgiePath = QStringLiteral("/org/budgie_desktop/Notifications");
const QString kBudgie = QStringLiteral("org.buddiesofbudgie.budgie.Dispatcher");

}  // namespace

BudgieDoNotDisturb::BudgieDoNotDisturb(QDBusConnection connection,
                                       const NotificationDaemonIdentity& daemon)
    : BusDoNotDisturb(std::move(connection), daemon), owner_(daemon.owner) {
  QDBusConnection signals_ = bus();
  signals_.connect(owner_, kBudgiePath, kBudgie, "DoNotDisturbChanged", this, SLOT(told(bool)));
  readFirst();
}

QDBusMessage BudgieDoNotDisturb::stateQuestion() const {
  return busCall(owner_, kBudgiePath, kBudgie, "GetDoNotDisturb");
}

std::optional<bool> BudgieDoNotDisturb::stateIn(const QDBusMessage& answer) const {
  return isError(answer) ? std::nullopt : std::optional(answer.arguments().value(0).toBool());
}

bool BudgieDoNotDisturb::set(bool on) {
  settle();
  const std::optional<bool> now = isOn();
  if (now && *now != on) {
    write(busCall(owner_, kBudgiePath, kBudgie, "ToggleDoNotDisturb"), on);
  } else if (!now) {
    qCWarning(lcNotifications,
              "Do Not Disturb could not be switched: it does not say whether it "
              "is on, and can only be turned round");
  }
  return now.has_value();
}

InhibitionDoNotDisturb::InhibitionDoNotDisturb(QDBusConnection connection,
                                               const NotificationDaemonIdentity& daemon)
    : PropertyDoNotDisturb(std::move(connection), daemon, kInhibitions) {}

std::optional<bool> InhibitionDoNotDisturb::isOn() {
  return wanted_ && PropertyDoNotDisturb::isOn().value_or(true);
}

bool InhibitionDoNotDisturb::set(bool on) {
  // It is not quiet: whoever ended that has ended ours, too.
  if (!inhibiting_ && !PropertyDoNotDisturb::isOn().value_or(true)) ticket_.reset();
  wanted_ = on;
  assume(on);
  if (!inhibiting_ && on != ticket_.has_value()) on ? inhibit() : release();
  return true;
}

void InhibitionDoNotDisturb::inhibit() {
  inhibiting_ = true;
  write(toDaemon(kInhibitions.interface, "Inhibit", {kDesktopEntry, kReason, QVariantMap()}), true,
        [this](const QDBusMessage& answer) {
          inhibiting_ = false;
          if (isError(answer)) {
            wanted_ = false;
            return;
          }
          ticket_ = answer.arguments().value(0).toUInt();
          if (!wanted_) release();
        });
}

void InhibitionDoNotDisturb::release() {
  write(toDaemon(kInhibitions.interface, "UnInhibit", {*std::exchange(ticket_, {})}), false);
}

}  // namespace linux_desktop
