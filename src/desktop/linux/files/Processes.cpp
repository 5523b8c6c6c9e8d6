#include "desktop/linux/files/Processes.h"

#include <QFile>

namespace linux_desktop {

QByteArrayList commandLineOf(qint64 pid) {
  QFile file(QStringLiteral("/proc/%1/cmdline").arg(pid));
  if (pid <= 0 || !file.open(QIODevice::ReadOnly)) return {};
  QByteArrayList words = file.readAll().split('\0');
  if (!words.isEmpty() && words.last().isEmpty()) words.removeLast();
  return words;
}

}  // namespace linux_desktop
