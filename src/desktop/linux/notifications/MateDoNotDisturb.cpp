#include "desktop/linux/notifications/MateDoNotDisturb.h"

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

constexpr const char* kSchema = "org.mate.NotificationDaemon";
constexpr const char* kKey = "do-not-disturb";

}  // namespace

std::unique_ptr<MateDoNotDisturb> MateDoNotDisturb::open() {
  auto settings = GuardedSettings::open(kSchema, {kKey});
  if (!settings || !settings->flag(kKey)) return nullptr;
  return std::unique_ptr<MateDoNotDisturb>(new MateDoNotDisturb(std::move(settings)));
}

MateDoNotDisturb::~MateDoNotDisturb() {
  if (written_ && !GuardedSettings::flush()) {
    qCWarning(lcNotifications, "dconf has not stored Do Not Disturb within half a second");
  }
}

std::optional<bool> MateDoNotDisturb::isOn() {
  return settings_->flag(kKey);
}

bool MateDoNotDisturb::set(bool on) {
  written_ = true;
  if (settings_->setFlag(kKey, on)) return true;
  qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s %s is locked", kSchema,
            kKey);
  return false;
}

}  // namespace linux_desktop
