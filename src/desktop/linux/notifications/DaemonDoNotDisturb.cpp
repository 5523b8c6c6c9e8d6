#include "desktop/linux/notifications/DaemonDoNotDisturb.h"

#include <QStringList>
#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "desktop/linux/language/Language.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/notifications/DaemonAdapters.h"

namespace linux_desktop {

/// As half sentences, in which "%1" is the daemon.
struct DaemonDoNotDisturb::Obstacle {
  const char* printed;
  const char* shown;
};

using AdapterPtr = std::unique_ptr<DoNotDisturbAdapter>;

/// By the pair that the daemon gives for itself (either half is also given by others), or by what
/// it can do, whatever its name.
struct DaemonDoNotDisturb::Kind {
  const char* name;
  const char* vendor;
  const char* capability;
  /// The desktop whose daemon it is, where the switch outlives the daemon.
  const char* desktop;
  /// Null where what the adapter needs is not there.
  AdapterPtr (*make)(const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
};

namespace {

using Obstacle = DaemonDoNotDisturb::Obstacle;
using Kind = DaemonDoNotDisturb::Kind;

constexpr Obstacle kNoBus{"there is no session bus", localizedLater("there is no session bus")};
constexpr Obstacle kNobody{"nothing shows notifications here",
                           localizedLater("nothing shows notifications")};
constexpr Obstacle kUnreachable{"the settings of %1 cannot be reached",
                                localizedLater("the settings of “%1” cannot be reached")};
constexpr Obstacle kNoSwitch{
    "%1 shows notifications and has no Do Not Disturb that can be switched",
    localizedLater("“%1” has no Do Not Disturb")};

template <auto open>
AdapterPtr stored(const NotificationDaemonIdentity& /*daemon*/, const QDBusConnection& /*bus*/) {
  return open();
}

// In order of preference.
constexpr Kind kKinds[] = {
    {"Xfce Notify Daemon", "Xfce", nullptr, "XFCE", &xfceDoNotDisturb},
    {"dunst", "knopwob", nullptr, nullptr, &dunstDoNotDisturb},
    {"Notification Daemon", "MATE", nullptr, "MATE", &stored<&settingsDoNotDisturb<kMateSwitch>>},
    {"lxqt-notificationd", "lxqt.org", nullptr, "LXQt", &stored<&lxqtDoNotDisturb>},
    {"mako", "emersion", nullptr, nullptr, &makoDoNotDisturb},
    {"SwayNotificationCenter", "ErikReider", nullptr, nullptr, &swayncDoNotDisturb},
    {"cinnamon", "GNOME", nullptr, nullptr, &stored<&settingsDoNotDisturb<kCinnamonSwitch>>},
    {"gnome-shell", "GNOME", nullptr, nullptr, &stored<&settingsDoNotDisturb<kGnomeSwitch>>},
    {"Budgie Notification Server", "Budgie Desktop Developers", nullptr, nullptr,
     &budgieDoNotDisturb},
    {"naughty", "awesome", nullptr, nullptr, &naughtyDoNotDisturb},
    {"Plasma", "KDE", nullptr, nullptr, &inhibitionDoNotDisturb},
    {nullptr, nullptr, "inhibitions", nullptr, &inhibitionDoNotDisturb},
};

bool describes(const Kind& kind, const NotificationDaemonIdentity& daemon) {
  if (kind.capability != nullptr) return daemon.capabilities.contains(kind.capability);
  return daemon.name == kind.name && daemon.vendor == kind.vendor;
}

/// Null: nothing switches those.
const Kind* kindOf(const NotificationDaemonIdentity& daemon) {
  const auto* kind =
      std::ranges::find_if(kKinds, [&](const Kind& each) { return describes(each, daemon); });
  return kind == std::end(kKinds) ? nullptr : kind;
}

/// That of the daemon which these desktops, as XDG_CURRENT_DESKTOP lists them, would start; null
/// where that can only be known once it runs.
const Kind* kindOf(const QStringList& desktops) {
  const auto* kind = std::ranges::find_if(kKinds, [&](const Kind& each) {
    return each.desktop != nullptr && desktops.contains(QLatin1String(each.desktop));
  });
  return kind == std::end(kKinds) ? nullptr : kind;
}

}  // namespace

DaemonDoNotDisturb::DaemonDoNotDisturb(NotificationDaemon& daemon) : daemon_(daemon) {
  connect(&daemon_, &NotificationDaemon::changed, this, &DaemonDoNotDisturb::readDaemon);
}

bool DaemonDoNotDisturb::exists() {
  daemon_.settle();
  const Obstacle* why = obstacle();
  if (why == nullptr) return true;
  // Whoever is turned away here, wanting quiet or its end, does not get the earlier wish later.
  wish_ = false;
  wishIsOwed_ = false;
  if (!std::exchange(complained_, true)) {
    const NotificationDaemonIdentity& daemon = daemon_.identity();
    const QString described = QStringLiteral(R"("%1" by "%2")").arg(daemon.name, daemon.vendor);
    qCWarning(lcNotifications, "notifications cannot be silenced: %s",
              qPrintable(QString(why->printed).replace(QLatin1String("%1"), described)));
  }
  return false;
}

bool DaemonDoNotDisturb::isOn() {
  daemon_.settle();
  if (!adapter_) return wish_;
  adapter_->settle();
  return adapter_->isOn().value_or(wish_);
}

bool DaemonDoNotDisturb::set(bool on) {
  wish_ = on;
  wishIsOwed_ = !adapter_;
  return adapter_ ? adapter_->set(on) : obstacle() == nullptr;
}

const Obstacle* DaemonDoNotDisturb::obstacle() const {
  if (!daemon_.hasBus()) return &kNoBus;
  if (daemon_.state() == NotificationDaemon::State::Known) return whyNoAdapter_;
  const bool nobody = daemon_.state() == NotificationDaemon::State::None && !adapter_;
  return nobody && !daemon_.canBeStarted() ? &kNobody : nullptr;
}

QString DaemonDoNotDisturb::obstacleForUser() const {
  const Obstacle* why = obstacle();
  if (why == nullptr) return {};
  return localized(why->shown).replace(QLatin1String("%1"), daemon_.identity().name);
}

void DaemonDoNotDisturb::readDaemon() {
  followDaemon();
  Q_EMIT obstacleChanged();
}

void DaemonDoNotDisturb::followDaemon() {
  // Nobody may have told us that it was switched off since.
  if (adapter_) wish_ = wish_ && adapter_->isOn().value_or(true);
  whyNoAdapter_ = nullptr;
  complained_ = false;
  if (daemon_.state() != NotificationDaemon::State::Known) return followNobody();
  const Kind* kind = kindOf(daemon_.identity());
  // The switch is where it was, and this one knows how it was before.
  if (adapter_ && kind == kind_ && adapter_->outlivesDaemon()) {
    return follow(*kind, std::move(adapter_));
  }
  adapter_.reset();
  if (kind == nullptr) {
    whyNoAdapter_ = &kNoSwitch;
  } else {
    follow(*kind, kind->make(daemon_.identity(), daemon_.bus()));
    if (!adapter_) whyNoAdapter_ = &kUnreachable;
  }
}

void DaemonDoNotDisturb::followNobody() {
  if (adapter_ && !adapter_->outlivesDaemon()) adapter_.reset();
  const bool nobody = daemon_.state() == NotificationDaemon::State::None;
  if (adapter_ || !nobody || !daemon_.canBeStarted()) return;
  const QStringList desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'));
  if (const Kind* kind = kindOf(desktops))
    follow(*kind, kind->make(daemon_.identity(), daemon_.bus()));
}

void DaemonDoNotDisturb::follow(const Kind& kind, std::unique_ptr<DoNotDisturbAdapter> adapter) {
  kind_ = &kind;
  adapter_ = std::move(adapter);
  if (!adapter_) return;
  const bool owed = std::exchange(wishIsOwed_, false);
  if (wish_ || owed) std::ignore = adapter_->set(wish_);
}

}  // namespace linux_desktop
