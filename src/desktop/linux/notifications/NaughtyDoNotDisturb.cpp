#include "desktop/linux/notifications/NaughtyDoNotDisturb.h"

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

constexpr const char* kRead = "return require('naughty').is_suspended()";
constexpr const char* kSuspend = "require('naughty').suspend()";
constexpr const char* kResume = "require('naughty').resume()";

}  // namespace

NaughtyDoNotDisturb::NaughtyDoNotDisturb(const QDBusConnection& /*bus*/,
                                         const NotificationDaemonIdentity& daemon)
    : awesome_(daemon.owner) {}

QDBusMessage NaughtyDoNotDisturb::run(const char* lua) {
  return awesome_.call(awesome_.method(QStringLiteral("/"),
                                       QStringLiteral("org.awesomewm.awful.Remote"),
                                       QStringLiteral("Eval"), {QString::fromLatin1(lua)}));
}

std::optional<bool> NaughtyDoNotDisturb::isOn() {
  const QVariant answer = run(kRead).arguments().value(0);
  return answer.typeId() == QMetaType::Bool ? std::optional(answer.toBool()) : std::nullopt;
}

bool NaughtyDoNotDisturb::set(bool on) {
  const QDBusMessage answer = run(on ? kSuspend : kResume);
  if (!isError(answer)) return true;
  qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s", reasonOf(answer).c_str());
  return false;
}

}  // namespace linux_desktop
