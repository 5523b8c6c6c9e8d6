#include "desktop/linux/wallpaper/DesktopProcess.h"

#include <QFile>

namespace linux_desktop {

QByteArrayList commandLineOf(qint64 pid) {
  QFile file(QStringLiteral("/proc/%1/cmdline").arg(pid));
  if (pid <= 0 || !file.open(QIODevice::ReadOnly)) return {};
  QByteArrayList words = file.readAll().split('\0');
  if (!words.isEmpty() && words.last().isEmpty()) words.removeLast();
  return words;
}

QString profileIn(const QByteArrayList& commandLine) {
  constexpr const char* kWithValue = "--profile=";
  for (qsizetype i = 1; i < commandLine.size(); ++i) {
    const QByteArray& word = commandLine[i];
    if (word.startsWith(kWithValue)) {
      return QFile::decodeName(word.mid(static_cast<qsizetype>(qstrlen(kWithValue))));
    }
    if ((word == "--profile" || word == "-p") && i + 1 < commandLine.size()) {
      return QFile::decodeName(commandLine[i + 1]);
    }
  }
  return QStringLiteral("default");
}

}  // namespace linux_desktop
