#include "desktop/linux/notifications/DaemonAdapters.h"

#include <QDBusPendingReply>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/files/IniFile.h"
#include "desktop/linux/files/Processes.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kMode = QStringLiteral("do-not-disturb");

/// The one that mako reads, in its own order.
QString configurationOf(qint64 process) {
  for (const auto& [letter, named] : optionsIn(commandLineOf(process), {"config"})) {
    // Relative to where mako was started.
    const QDir start(QStringLiteral("/proc/%1/cwd").arg(process));
    if (!named.isEmpty()) return start.filePath(QFile::decodeName(named));
  }
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

/// Says why; false.
bool refused(const QString& why) {
  qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s", qPrintable(why));
  return false;
}

class MakoDoNotDisturb final : public DoNotDisturbAdapter {
 public:
  explicit MakoDoNotDisturb(const QString& owner) : mako_(owner) {}

  [[nodiscard]] std::optional<bool> isOn() override {
    const auto present = modes(BusPeer::deadline());
    return present ? std::optional(present->contains(kMode)) : std::nullopt;
  }
  [[nodiscard]] bool set(bool on) override;

 private:
  [[nodiscard]] QDBusMessage method(const QString& name, const QVariantList& arguments = {}) const {
    return mako_.method("/fr/emersion/Mako", "fr.emersion.Mako", name, arguments);
  }
  [[nodiscard]] std::optional<QStringList> modes(const QDeadlineTimer& deadline) {
    const QDBusPendingReply<QStringList> modes = mako_.call(method("ListModes"), deadline);
    return modes.isError() ? std::nullopt : std::optional(modes.value());
  }

  BusPeer mako_;
};

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
  const QDBusMessage answer = mako_.call(method("SetModes", {*wanted}), deadline);
  return !isError(answer) || refused(QString::fromStdString(reasonOf(answer)));
}

class NaughtyDoNotDisturb final : public DoNotDisturbAdapter {
 public:
  explicit NaughtyDoNotDisturb(const QString& owner) : awesome_(owner) {}

  [[nodiscard]] std::optional<bool> isOn() override {
    const QVariant answer = run("return require('naughty').is_suspended()").arguments().value(0);
    return answer.typeId() == QMetaType::Bool ? std::optional(answer.toBool()) : std::nullopt;
  }
  [[nodiscard]] bool set(bool on) override {
    const QDBusMessage answer =
        run(on ? "require('naughty').suspend()" : "require('naughty').resume()");
    return !isError(answer) || refused(QString::fromStdString(reasonOf(answer)));
  }

 private:
  [[nodiscard]] QDBusMessage run(const char* lua) {
    return awesome_.call(awesome_.method("/", "org.awesomewm.awful.Remote", "Eval", {lua}));
  }

  BusPeer awesome_;
};

}  // namespace

std::unique_ptr<DoNotDisturbAdapter> makoDoNotDisturb(const NotificationDaemonIdentity& daemon,
                                                      const QDBusConnection& /*bus*/) {
  return std::make_unique<MakoDoNotDisturb>(daemon.owner);
}

std::unique_ptr<DoNotDisturbAdapter> naughtyDoNotDisturb(const NotificationDaemonIdentity& daemon,
                                                         const QDBusConnection& /*bus*/) {
  return std::make_unique<NaughtyDoNotDisturb>(daemon.owner);
}

}  // namespace linux_desktop
