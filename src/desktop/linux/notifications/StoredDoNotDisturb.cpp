#include "desktop/linux/notifications/DaemonAdapters.h"

#include <QSettings>
#include <QStandardPaths>
#include <QString>
#include <utility>

#include "desktop/linux/files/IniFile.h"
#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/notifications/FormerAbsence.h"

namespace linux_desktop {
namespace {

class SettingsDoNotDisturb final : public DoNotDisturbAdapter {
 public:
  SettingsDoNotDisturb(const SettingsSwitch& row, std::unique_ptr<GuardedSettings> settings)
      : row_(row),
        settings_(std::move(settings)),
        absence_(QStringLiteral("%1.%2").arg(QLatin1String(row.schema), QLatin1String(row.key))) {}
  ~SettingsDoNotDisturb() override {
    if (written_ && !GuardedSettings::flush()) {
      qCWarning(lcNotifications, "dconf has not stored Do Not Disturb within half a second");
    }
  }

  [[nodiscard]] std::optional<bool> isOn() override {
    const auto flag = settings_->flag(row_.key);
    return flag ? std::optional(*flag == row_.quiet) : std::nullopt;
  }
  [[nodiscard]] bool set(bool on) override {
    written_ = true;
    const bool unsets = absence_.comesBack(on, isOn(), settings_->userValue(row_.key).has_value());
    const bool done = unsets ? settings_->setUserValue(row_.key, std::nullopt)
                             : settings_->setFlag(row_.key, on == row_.quiet);
    if (done) return true;
    qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s %s is locked", row_.schema,
              row_.key);
    return false;
  }
  [[nodiscard]] bool outlivesDaemon() const override { return true; }

 private:
  const SettingsSwitch& row_;
  std::unique_ptr<GuardedSettings> settings_;
  bool written_ = false;
  FormerAbsence absence_;
};

const QString kLxqtFile = QStringLiteral("lxqt/notifications.conf");
constexpr const char* kSection = "General";
constexpr const char* kLxqtKey = "doNotDisturb";

class LxqtDoNotDisturb final : public DoNotDisturbAdapter {
 public:
  /// In the user's own file first, then those of the system, as the daemon looks.
  [[nodiscard]] std::optional<bool> isOn() override {
    const auto files = QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation, kLxqtFile);
    for (const QString& path : files) {
      const QSettings settings(path, QSettings::IniFormat);
      if (settings.contains(kLxqtKey)) return settings.value(kLxqtKey).toBool();
    }
    return false;
  }
  // QSettings would write the other entries anew, and a daemon on Qt 5 reads its UTF-8 as Latin-1.
  [[nodiscard]] bool set(bool on) override {
    const QString path =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + '/' + kLxqtFile;
    const auto stored = iniValue(iniText(path).value_or(""), kSection, kLxqtKey);
    const bool unsets = absence_.comesBack(on, isOn(), stored.has_value());
    const auto reason =
        setIniValue(path, kSection, kLxqtKey,
                    unsets ? std::nullopt : std::optional(QByteArray(on ? "true" : "false")));
    if (reason) {
      qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s", reason->c_str());
    }
    return !reason;
  }
  [[nodiscard]] bool outlivesDaemon() const override { return true; }

 private:
  FormerAbsence absence_{QStringLiteral("lxqt-notificationd.doNotDisturb")};
};

}  // namespace

std::unique_ptr<DoNotDisturbAdapter> settingsDoNotDisturb(const SettingsSwitch& row) {
  auto settings = GuardedSettings::open(row.schema, {row.key});
  if (!settings || !settings->flag(row.key)) return nullptr;
  return std::make_unique<SettingsDoNotDisturb>(row, std::move(settings));
}

std::unique_ptr<DoNotDisturbAdapter> lxqtDoNotDisturb() {
  return std::make_unique<LxqtDoNotDisturb>();
}

}  // namespace linux_desktop
