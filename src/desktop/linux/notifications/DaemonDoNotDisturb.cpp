#include "desktop/linux/notifications/DaemonDoNotDisturb.h"

#include <QStringList>
#include <tuple>
#include <utility>

#include "desktop/linux/notifications/DoNotDisturbTable.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {

DaemonDoNotDisturb::DaemonDoNotDisturb(NotificationDaemon& daemon) : daemon_(daemon) {
  connect(&daemon_, &NotificationDaemon::changed, this, &DaemonDoNotDisturb::followDaemon);
}

bool DaemonDoNotDisturb::exists() {
  daemon_.settle();
  const QString why = obstacle();
  if (why.isEmpty()) return true;
  // Whoever is turned away here, wanting quiet or its end, does not get the earlier wish later.
  wish_ = false;
  wishIsOwed_ = false;
  if (!std::exchange(complained_, true)) {
    qCWarning(lcNotifications, "notifications cannot be silenced: %s", qPrintable(why));
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
  return adapter_ ? adapter_->set(on) : obstacle().isEmpty();
}

QString DaemonDoNotDisturb::obstacle() const {
  if (!daemon_.hasBus()) return "there is no session bus";
  if (daemon_.state() == NotificationDaemon::State::Known) return whyNoAdapter_;
  const bool nobody = daemon_.state() == NotificationDaemon::State::None && !adapter_;
  return nobody && !daemon_.canBeStarted() ? "nothing shows notifications here" : QString();
}

void DaemonDoNotDisturb::followDaemon() {
  // Nobody may have told us that it was switched off since.
  if (adapter_) wish_ = wish_ && adapter_->isOn().value_or(true);
  whyNoAdapter_.clear();
  complained_ = false;
  if (daemon_.state() != NotificationDaemon::State::Known) return followNobody();
  adapter_.reset();
  auto found = adapterFor(daemon_.identity(), daemon_.bus());
  if (auto* adapter = std::get_if<std::unique_ptr<DoNotDisturbAdapter>>(&found)) {
    follow(std::move(*adapter));
  } else {
    whyNoAdapter_ = std::get<QString>(found);
  }
}

void DaemonDoNotDisturb::followNobody() {
  if (adapter_ && !adapter_->outlivesDaemon()) adapter_.reset();
  const bool nobody = daemon_.state() == NotificationDaemon::State::None;
  if (adapter_ || !nobody || !daemon_.canBeStarted()) return;
  const QStringList desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'));
  if (auto adapter = adapterForDaemonOf(desktops, daemon_.identity(), daemon_.bus()))
    follow(std::move(adapter));
}

void DaemonDoNotDisturb::follow(std::unique_ptr<DoNotDisturbAdapter> adapter) {
  adapter_ = std::move(adapter);
  const bool owed = std::exchange(wishIsOwed_, false);
  if (wish_ || owed) std::ignore = adapter_->set(wish_);
}

}  // namespace linux_desktop
