#include "desktop/linux/notifications/MakoDoNotDisturb.h"

#include <QDBusPendingReply>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include "desktop/linux/files/IniFile.h"
#include "desktop/linux/files/Processes.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kMode = QStringLiteral("do-not-disturb");

/// Where mako's command line names its configuration; empty where it does not.
QString namedConfiguration(const QByteArrayList& commandLine) {
  for (qsizetype i = 1; i < commandLine.size(); ++i) {
    const QByteArray& word = commandLine[i];
    for (const char* option : {"--config=", "-c"}) {
      const QByteArray value = word.mid(static_cast<qsizetype>(qstrlen(option)));
      if (word.startsWith(option) && !value.isEmpty()) return QFile::decodeName(value);
    }
    const bool isNext = word == "-c" || word == "--config";
    if (isNext && i + 1 < commandLine.size()) return QFile::decodeName(commandLine[i + 1]);
  }
  return {};
}

/// The one that mako reads, in its own order.
QString configurationOf(qint64 process) {
  const QString named = namedConfiguration(commandLineOf(process));
  // Relative to where mako was started.
  if (!named.isEmpty()) return QDir(QStringLiteral("/proc/%1/cwd").arg(process)).filePath(named);
  const QString old = QDir::home().filePath(QStringLiteral(".mako/config"));
  return QFileInfo(old).isReadable()
             ? old
             : QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                   QStringLiteral("/mako/config");
}

QString included(const QString& line) {
  const QString file = line.mid(line.indexOf(QLatin1Char('=')) + 1);
  return file.startsWith(QLatin1String("~/")) ? QDir::home().filePath(file.mid(2)) : file;
}

/// Whether a section for the mode, maybe one among several with further conditions, makes
/// notifications invisible. `depth` ends files that include each other.
bool silences(const QString& file, int depth = 4) {
  const QString mode = QStringLiteral("mode=") + kMode;
  bool isOfMode = false;
  for (const QByteArray& written : iniText(file).value_or(QByteArray()).split('\n')) {
    const QString line = QString::fromUtf8(written).trimmed();
    if (line.startsWith(QLatin1Char('['))) {
      isOfMode = QProcess::splitCommand(line.mid(1, line.size() - 2)).contains(mode);
    } else if (line.startsWith(QLatin1String("include="))) {
      if (depth > 0 && silences(included(line), depth - 1)) return true;
    } else if (isOfMode &&
               (line == QLatin1String("invisible=1") || line == QLatin1String("invisible=true"))) {
      return true;
    }
  }
  return false;
}

QDBusMessage toMako(const BusPeer& mako, const char* method, const QVariantList& arguments = {}) {
  return mako.method(QStringLiteral("/fr/emersion/Mako"), QStringLiteral("fr.emersion.Mako"),
                     QLatin1String(method), arguments);
}

bool refused(const QString& why) {
  qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s", qPrintable(why));
  return false;
}

}  // namespace

MakoDoNotDisturb::MakoDoNotDisturb(const QDBusConnection& /*bus*/,
                                   const NotificationDaemonIdentity& daemon)
    : mako_(daemon.owner) {}

std::optional<QStringList> MakoDoNotDisturb::modes(const QDeadlineTimer& deadline) {
  const QDBusPendingReply<QStringList> modes = mako_.call(toMako(mako_, "ListModes"), deadline);
  return modes.isError() ? std::nullopt : std::optional(modes.value());
}

std::optional<bool> MakoDoNotDisturb::isOn() {
  const auto present = modes(BusPeer::deadline());
  return present ? std::optional(present->contains(kMode)) : std::nullopt;
}

bool MakoDoNotDisturb::set(bool on) {
  const QDeadlineTimer deadline = BusPeer::deadline();
  const QString file = configurationOf(mako_.process(deadline));
  if (on && !silences(file)) {
    return refused(file + QStringLiteral(" has no section [mode=do-not-disturb] with invisible=1, "
                                         "without which mako silences nothing"));
  }
  auto wanted = modes(deadline);
  if (!wanted) return refused(QStringLiteral("mako does not answer"));
  wanted->removeAll(kMode);
  if (on) wanted->push_back(kMode);
  const QDBusMessage answer = mako_.call(toMako(mako_, "SetModes", {*wanted}), deadline);
  return !isError(answer) || refused(QString::fromStdString(reasonOf(answer)));
}

}  // namespace linux_desktop
