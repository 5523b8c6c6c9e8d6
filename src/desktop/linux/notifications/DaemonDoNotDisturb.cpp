#include "desktop/linux/notifications/DaemonDoNotDisturb.h"

#include <tuple>
#include <utility>

#include "desktop/linux/notifications/DoNotDisturbTable.h"
#include "desktop/linux/notifications/NotificationsLog.h"

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
  if (adapter_) return adapter_->set(on);
  wishIsOwed_ = true;
  return obstacle().isEmpty();
}

QString DaemonDoNotDisturb::obstacle() const {
  if (!daemon_.hasBus()) return "there is no session bus";
  if (daemon_.state() == NotificationDaemon::State::Known) return whyNoAdapter_;
  const bool nobody = daemon_.state() == NotificationDaemon::State::None;
  return nobody && !daemon_.canBeStarted() ? "nothing shows notifications here" : QString();
}

void DaemonDoNotDisturb::followDaemon() {
  // Nobody may have told us that it was switched off since.
  if (adapter_) wish_ = wish_ && adapter_->isOn().value_or(true);
  adapter_.reset();
  whyNoAdapter_.clear();
  complained_ = false;
  if (daemon_.state() != NotificationDaemon::State::Known) return;
  auto found = adapterFor(daemon_.identity(), daemon_.bus());
  if (auto* adapter = std::get_if<std::unique_ptr<DoNotDisturbAdapter>>(&found)) {
    follow(std::move(*adapter));
  } else {
    whyNoAdapter_ = std::get<QString>(found);
  }
}

void DaemonDoNotDisturb::follow(std::unique_ptr<DoNotDisturbAdapter> adapter) {
  adapter_ = std::move(adapter);
  const bool owed = std::exchange(wishIsOwed_, false);
  if (wish_ || owed) std::ignore = adapter_->set(wish_);
}

}  // namespace linux_desktop
