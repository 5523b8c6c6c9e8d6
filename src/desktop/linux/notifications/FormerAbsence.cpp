#include "desktop/linux/notifications/FormerAbsence.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <utility>

#include "desktop/linux/files/IniFile.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// QStandardPaths knows it from Qt 6.7 on.
QDir folder() {
  const QString state = qEnvironmentVariable("XDG_STATE_HOME");
  const QString usual = QDir::home().filePath(QStringLiteral(".local/state"));
  return QDir((QDir::isAbsolutePath(state) ? state : usual) + QStringLiteral("/calmdeck"));
}

}  // namespace

FormerAbsence::FormerAbsence(const QString& setting)
    : mark_(folder().filePath(setting + QStringLiteral(".was-unset"))),
      wasAbsent_(QFile::exists(mark_)) {}

bool FormerAbsence::comesBack(bool on, std::optional<bool> wasOn, bool wasSet) {
  if (on && wasOn == false) note(!wasSet);
  if (on) return false;
  const bool comes = wasAbsent_;
  note(false);
  return comes;
}

void FormerAbsence::note(bool wasAbsent) {
  if (std::exchange(wasAbsent_, wasAbsent) == wasAbsent) return;
  const auto fault = putIniText(mark_, wasAbsent ? std::optional(QByteArray("")) : std::nullopt);
  if (fault) qCWarning(lcNotifications, "%s", fault->c_str());
  // Unless something else is in there.
  if (!wasAbsent) QDir().rmdir(folder().path());
}

}  // namespace linux_desktop
