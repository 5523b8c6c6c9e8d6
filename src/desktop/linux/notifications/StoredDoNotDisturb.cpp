#include "desktop/linux/notifications/StoredDoNotDisturb.h"

#include <QSettings>
#include <QStandardPaths>
#include <QString>
#include <utility>

#include "desktop/linux/files/IniFile.h"
#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

constexpr const char* kMateSchema = "org.mate.NotificationDaemon";
constexpr const char* kMateKey = "do-not-disturb";

class MateDoNotDisturb final : public DoNotDisturbAdapter {
 public:
  explicit MateDoNotDisturb(std::unique_ptr<GuardedSettings> settings)
      : settings_(std::move(settings)) {}
  ~MateDoNotDisturb() override {
    if (written_ && !GuardedSettings::flush()) {
      qCWarning(lcNotifications, "dconf has not stored Do Not Disturb within half a second");
    }
  }

  [[nodiscard]] std::optional<bool> isOn() override { return settings_->flag(kMateKey); }
  [[nodiscard]] bool set(bool on) override {
    written_ = true;
    if (settings_->setFlag(kMateKey, on)) return true;
    qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s %s is locked", kMateSchema,
              kMateKey);
    return false;
  }
  [[nodiscard]] bool outlivesDaemon() const override { return true; }

 private:
  std::unique_ptr<GuardedSettings> settings_;
  bool written_ = false;
};

const QString kLxqtFile = QStringLiteral("lxqt/notifications.conf");
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
    const auto reason = setIniValue(path, "General", kLxqtKey, on ? "true" : "false");
    if (reason) {
      qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s", reason->c_str());
    }
    return !reason;
  }
  [[nodiscard]] bool outlivesDaemon() const override { return true; }
};

}  // namespace

std::unique_ptr<DoNotDisturbAdapter> mateDoNotDisturb() {
  auto settings = GuardedSettings::open(kMateSchema, {kMateKey});
  if (!settings || !settings->flag(kMateKey)) return nullptr;
  return std::make_unique<MateDoNotDisturb>(std::move(settings));
}

std::unique_ptr<DoNotDisturbAdapter> lxqtDoNotDisturb() {
  return std::make_unique<LxqtDoNotDisturb>();
}

}  // namespace linux_desktop
