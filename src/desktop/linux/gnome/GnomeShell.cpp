#include "desktop/linux/gnome/GnomeShell.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QStandardPaths>
#include <QVariantMap>
#include <algorithm>
#include <chrono>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kUuid = QStringLiteral("shell@calmdeck.org");
const QString kShell = QStringLiteral("org.gnome.Shell");
const QString kExtension = QStringLiteral("org.calmdeck.Shell");
const QString kPath = QStringLiteral("/org/calmdeck/Shell");

/// A shell that starts has other things to do, and while it does nobody is shown anything.
constexpr std::chrono::seconds kStartPatience{10};
constexpr std::chrono::milliseconds kPatience{5000};

/// As the shell numbers them from 43 on (misc/extensionUtils.js, ExtensionState).
enum class State { On = 1, Off = 2, Error = 3, OutOfDate = 4 };

// The shell itself; the service of the name org.gnome.Shell.Extensions would have to be started.
QDBusMessage aboutExtension(const QString& method) {
  return busCall(kShell, QStringLiteral("/org/gnome/Shell"),
                 QStringLiteral("org.gnome.Shell.Extensions"), method, {kUuid});
}

bool isInstalled() {
  return !QStandardPaths::locate(
              QStandardPaths::GenericDataLocation,
              QStringLiteral("gnome-shell/extensions/%1/metadata.json").arg(kUuid))
              .isEmpty();
}

constexpr const char* kOff = "disabled-extensions";
constexpr const char* kAllOff = "disable-user-extensions";
constexpr const char* kWithout =
    "GNOME Shell does without our extension: its user has turned it off";

/// By the user, whose word it is: the shell lists as such what is turned off and not what never was
/// on.
bool isTurnedOff(const GuardedSettings* settings) {
  if (settings == nullptr) return false;
  const auto off = settings->list(kOff);
  const bool isListed = off && std::ranges::find(*off, kUuid.toStdString()) != off->end();
  return isListed || settings->flag(kAllOff) == true;
}

/// Whether the shell can turn it on, by what it tells of it; if not, a line says why.
bool isUsable(const QVariantMap& extension) {
  if (extension.isEmpty()) {
    if (isInstalled())
      qCWarning(lcGnome, "GNOME Shell does without our extension until the next login");
    return false;
  }
  const auto state = static_cast<State>(extension.value(QStringLiteral("state")).toInt());
  if (state != State::Error && state != State::OutOfDate) return true;
  const QString error = extension.value(QStringLiteral("error")).toString();
  qCWarning(lcGnome, "GNOME Shell does without our extension: %s",
            state == State::OutOfDate ? "it is for other releases" : qUtf8Printable(error));
  return false;
}

QString whole(const QString& interface) {
  return interface.isEmpty() ? kExtension : kExtension + QLatin1Char('.') + interface;
}

}  // namespace

std::unique_ptr<GnomeShell> GnomeShell::open() {
  BusPeer shell(kShell);
  const QDBusMessage answer = shell.call(aboutExtension(QStringLiteral("GetExtensionInfo")),
                                         QDeadlineTimer(kStartPatience));
  if (isError(answer)) {
    qCDebug(lcGnome) << "no GNOME Shell:" << reasonOf(answer).c_str();
    return nullptr;
  }
  if (!isUsable(qdbus_cast<QVariantMap>(answer.arguments().value(0)))) return nullptr;
  return std::unique_ptr<GnomeShell>(
      new GnomeShell(GuardedSettings::open("org.gnome.shell", {kOff, kAllOff})));
}

GnomeShell::GnomeShell(std::unique_ptr<GuardedSettings> settings)
    : settings_(std::move(settings)),
      peer_(kExtension),
      names_(kExtension, QDBusConnection::sessionBus(),
             QDBusServiceWatcher::WatchForUnregistration) {
  names_.addWatchedService(kShell);
  connect(&names_, &QDBusServiceWatcher::serviceUnregistered, this, &GnomeShell::left);
  // Which may be heard of after the extension has gone.
  if (settings_) settings_->setChanged([this](const std::string&) { lookWhetherTurnedOff(); });
  readiness_ = listen({}, QStringLiteral("Ready"), [this](const QVariantList& /*nothing*/) {
    isReady_ = true;
    isOff_ = false;
    Q_EMIT ready();
  });
  lookWhetherTurnedOff();
  if (!isOff_) turnOn();
}

void GnomeShell::turnOn() {
  linux_desktop::ask(QDBusConnection::sessionBus(),
                     aboutExtension(QStringLiteral("EnableExtension")), this,
                     [this](const QDBusMessage& answer) {
                       if (!isError(answer) && answer.arguments().value(0).toBool()) return;
                       qCWarning(lcGnome, "GNOME Shell does not turn our extension on: %s",
                                 isError(answer) ? reasonOf(answer).c_str() : "it is not allowed");
                       isOff_ = true;
                       Q_EMIT turnedOff();
                     });
}

void GnomeShell::left(const QString& name) {
  if (name == kShell) {
    Q_EMIT ended();
    return;
  }
  isReady_ = false;
  Q_EMIT gone();
  lookWhetherTurnedOff();
}

void GnomeShell::lookWhetherTurnedOff() {
  if (isReady_ || isOff_ == isTurnedOff(settings_.get())) return;
  // The user allows extensions again: that alone turns on none that never was.
  if (isOff_) return turnOn();
  isOff_ = true;
  qCWarning(lcGnome, kWithout);
  Q_EMIT turnedOff();
}

void GnomeShell::send(const QString& interface, const QString& method,
                      const QVariantList& arguments) {
  if (!isReady_) return;
  ask(interface, method, arguments, this, [method](const QDBusMessage& answer) {
    if (isError(answer))
      qCWarning(lcGnome, "GNOME Shell, %s: %s", qUtf8Printable(method), reasonOf(answer).c_str());
  });
}

void GnomeShell::ask(const QString& interface, const QString& method, const QVariantList& arguments,
                     QObject* asker, std::function<void(const QDBusMessage& answer)> answered) {
  linux_desktop::ask(QDBusConnection::sessionBus(),
                     busCall(kExtension, kPath, whole(interface), method, arguments), asker,
                     std::move(answered), static_cast<int>(kPatience.count()));
}

bool GnomeShell::call(const QString& interface, const QString& method,
                      const QVariantList& arguments) {
  if (!isReady_) return false;
  const QDBusMessage answer = peer_.call(peer_.method(kPath, whole(interface), method, arguments));
  if (isError(answer))
    qCWarning(lcGnome, "GNOME Shell, %s: %s", qUtf8Printable(method), reasonOf(answer).c_str());
  return !isError(answer);
}

std::unique_ptr<BusSignal> GnomeShell::listen(
    const QString& interface, const QString& signal,
    std::function<void(const QVariantList& values)> heard) {
  const BusSignal::Source source{kExtension, kPath, whole(interface), signal};
  return std::make_unique<BusSignal>(
      QDBusConnection::sessionBus(), source,
      [heard = std::move(heard)](const QDBusMessage& said) { heard(said.arguments()); });
}

}  // namespace linux_desktop
