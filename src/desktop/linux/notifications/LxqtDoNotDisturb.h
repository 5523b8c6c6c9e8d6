#pragma once

#include <QByteArray>

#include "desktop/linux/notifications/DoNotDisturbAdapter.h"

namespace linux_desktop {

/// lxqt-notificationd: an entry of its settings file, which it watches and follows within a second
/// or two. The entry outlasts the daemon and us.
class LxqtDoNotDisturb final : public DoNotDisturbAdapter {
 public:
  [[nodiscard]] std::optional<bool> isOn() override;
  [[nodiscard]] bool set(bool on) override;
  [[nodiscard]] bool outlivesDaemon() const override { return true; }
};

/// The settings file `text` with this entry in its section [General], every other byte as it was.
/// QSettings would write the other entries anew, and a daemon on Qt 5 reads its UTF-8 as Latin-1.
[[nodiscard]] QByteArray withGeneralEntry(const QByteArray& text, const QByteArray& key,
                                          const QByteArray& value);

}  // namespace linux_desktop
