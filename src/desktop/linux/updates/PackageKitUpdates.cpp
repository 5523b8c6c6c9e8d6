#include "desktop/linux/updates/PackageKitUpdates.h"

#include <gio/gio.h>

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <array>
#include <cstddef>
#include <string>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/language/Language.h"
#include "desktop/linux/log/Log.h"
#include "platform/appkit/NSAlert.h"

namespace linux_desktop {
namespace {

const QString kPackageKit = QStringLiteral("org.freedesktop.PackageKit");
const QString kPackageKitPath = QStringLiteral("/org/freedesktop/PackageKit");
const QString kTransaction = QStringLiteral("org.freedesktop.PackageKit.Transaction");

// PackageKit's PK_EXIT_ENUM_SUCCESS, PK_FILTER_ENUM_NONE (bit 1) and PK_INFO_ENUM_BLOCKED; newer
// ones keep how urgent an update is in the upper half of the last.
constexpr uint kSuccess = 1;
constexpr quint64 kNoFilter = 1U << 1U;
constexpr uint kBlocked = 9;
constexpr uint kInfoMask = 0xffff;

// AppStream's scheme; the desktop's table of handlers knows who shows such pages.
constexpr const char* kScheme = "appstream";
constexpr const char* kPage = "appstream://org.calmdeck.Calmdeck";

void launched(GObject* /*source*/, GAsyncResult* result, gpointer /*data*/) {
  GError* error = nullptr;
  if (g_app_info_launch_default_for_uri_finish(result, &error) != FALSE) return;
  qCWarning(lcUpdates, "The software centre cannot be opened: %s", error->message);
  g_error_free(error);
}

/// Whether some program of this desktop shows the pages of the system's software.
bool hasSoftwareCentre() {
  GAppInfo* handler = g_app_info_get_default_for_uri_scheme(kScheme);
  if (handler == nullptr) return false;
  g_object_unref(handler);
  return true;
}

/// Opens Calmdeck's page there. Returns at once; a failure is one line on standard error.
void openSoftwareCentre() {
  g_app_info_launch_default_for_uri_async(kPage, nullptr, nullptr, &launched, nullptr);
}

using platform::NSAlert;
using platform::NSAlertStyle;
using Kind = UpdateAnswer::Kind;
using Manner = PackageKitQuestion::Manner;

const QString kPackage = QStringLiteral("calmdeck");

/// By the kind of the answer: "%1" is the version there is, "%2" the one that runs.
constexpr std::array kTexts{
    localizedLater("Calmdeck %1 is available, this is %2. It comes with the system's updates."),
    localizedLater("The system knows of no newer version of Calmdeck than %2."),
    localizedLater("This is Calmdeck %2. New versions come with the system's updates."),
    localizedLater("The system's package service does not answer. Please try again later."),
    localizedLater("The system's package service could not look for updates."),
};

const char* englishOf(Kind kind) {
  return kTexts.at(static_cast<std::size_t>(kind));
}

/// In English, or as `localized` has it.
std::string textOf(const UpdateAnswer& answer, QString text) {
  if (answer.kind == Kind::Newer) text.replace(QLatin1String("%1"), answer.detail);
  text.replace(QLatin1String("%2"), QCoreApplication::applicationVersion());
  if (answer.kind == Kind::Failed && !answer.detail.isEmpty()) text += "\n\n" + answer.detail;
  return text.toStdString();
}

std::string textForUser(const UpdateAnswer& answer) {
  return textOf(answer, localized(englishOf(answer.kind)));
}

}  // namespace

PackageKitQuestion::PackageKitQuestion(QString package, Manner manner,
                                       std::chrono::milliseconds patience, Answered answered)
    : probe_(BusProbe::Bus::System, [this](bool answers) { takeBus(answers); }),
      package_(std::move(package)),
      manner_(manner),
      answered_(std::move(answered)),
      patience_(patience, [this] { finish({UpdateAnswer::Kind::Silent}); }) {
  patience_.start();
}

PackageKitQuestion::~PackageKitQuestion() {
  if (!transaction_.isEmpty()) bus_.send(toTransaction("Cancel"));
}

void PackageKitQuestion::takeBus(bool answers) {
  if (answers) bus_ = QDBusConnection::systemBus();
  if (!bus_.isConnected()) return finish({UpdateAnswer::Kind::Absent});
  createTransaction();
}

void PackageKitQuestion::createTransaction() {
  QDBusMessage call = busCall(kPackageKit, kPackageKitPath, kPackageKit, "CreateTransaction");
  call.setAutoStartService(true);
  ask(bus_, call, this, [this](const QDBusMessage& answer) { takeTransaction(answer); });
}

void PackageKitQuestion::takeTransaction(const QDBusMessage& answer) {
  if (isError(answer)) {
    qCInfo(lcUpdates, "PackageKit cannot be asked: %s", qPrintable(answer.errorMessage()));
    return finish({UpdateAnswer::Kind::Absent});
  }
  transaction_ = answer.arguments().value(0).value<QDBusObjectPath>().path();
  if (transaction_.isEmpty()) {
    return finish({UpdateAnswer::Kind::Failed, QStringLiteral("It speaks another language.")});
  }
  findService();
}

// Following signals of a name that others may take waits for the bus to say whose it is, and not
// every version of Qt tells who answered.
void PackageKitQuestion::findService() {
  ask(bus_, callToBus("GetNameOwner", {kPackageKit}), this, [this](const QDBusMessage& answer) {
    if (isError(answer)) return ended();
    service_ = answer.arguments().value(0).toString();
    lookForUpdates();
  });
}

void PackageKitQuestion::ended() {
  transaction_.clear();
  finish({UpdateAnswer::Kind::Failed, QStringLiteral("It ended while it looked.")});
}

void PackageKitQuestion::follow(const char* signal,
                                std::function<void(const QVariantList& values)> heard) {
  signals_.emplace_back(
      bus_, BusSignal::Source{service_, transaction_, kTransaction, signal},
      [heard = std::move(heard)](const QDBusMessage& message) { heard(message.arguments()); });
}

void PackageKitQuestion::lookForUpdates() {
  follow("Package", [this](const QVariantList& values) {
    packageFound(values.value(0).toUInt(), values.value(1).toString());
  });
  follow("ErrorCode", [this](const QVariantList& values) { error_ = values.value(1).toString(); });
  follow("Finished", [this](const QVariantList& values) {
    transaction_.clear();
    const bool isDone = values.value(0).toUInt() == kSuccess;
    finish(isDone ? found_ : UpdateAnswer{UpdateAnswer::Kind::Failed, error_});
  });

  auto* life =
      new QDBusServiceWatcher(service_, bus_, QDBusServiceWatcher::WatchForUnregistration, this);
  connect(life, &QDBusServiceWatcher::serviceUnregistered, this, &PackageKitQuestion::ended);

  const bool background = manner_ == Manner::InBackground;
  QDBusMessage hints = toTransaction("SetHints");
  hints << QStringList{background ? "background=true" : "background=false", "interactive=false"};
  bus_.send(hints);
  QDBusMessage call = toTransaction("GetUpdates");
  call << kNoFilter;
  ask(bus_, call, this, [this](const QDBusMessage& answer) {
    if (isError(answer)) finish({UpdateAnswer::Kind::Failed, answer.errorMessage()});
  });
}

void PackageKitQuestion::packageFound(uint kind, const QString& id) {
  // "name;version;architecture;origin"
  const QStringList parts = id.split(QLatin1Char(';'));
  if (parts.size() < 2 || parts[0] != package_ || (kind & kInfoMask) == kBlocked) return;
  found_ = {UpdateAnswer::Kind::Newer, parts[1]};
}

QDBusMessage PackageKitQuestion::toTransaction(const QString& method) const {
  return busCall(kPackageKit, transaction_, kTransaction, method);
}

void PackageKitQuestion::finish(const UpdateAnswer& answer) {
  patience_.stop();
  const Answered answered = std::exchange(answered_, {});
  if (answered) answered(answer);
}

void PackageKitUpdates::checkInBackground() {
  if (userWaits_) return;
  question(Manner::InBackground, patience_.background,
           [this](const UpdateAnswer& answer) { notify(answer); });
}

void PackageKitUpdates::checkForUpdates() {
  if (userWaits_) return;
  userWaits_ = true;
  question(Manner::ForTheUser, patience_.user,
           [this](const UpdateAnswer& answer) { show(answer); });
}

void PackageKitUpdates::question(Manner manner, std::chrono::milliseconds patience,
                                 PackageKitQuestion::Answered answered) {
  question_ = std::make_unique<PackageKitQuestion>(
      kPackage, manner, patience,
      [this, answered = std::move(answered)](const UpdateAnswer& answer) {
        qCInfo(lcUpdates, "%s", textOf(answer, englishOf(answer.kind)).c_str());
        // It is still in its own call.
        question_.release()->deleteLater();
        answered(answer);
      });
}

void PackageKitUpdates::notify(const UpdateAnswer& answer) {
  if (answer.kind != Kind::Newer) return;
  if (const auto reason = notifier_.show(textForUser(answer))) {
    qCInfo(lcUpdates, "%s", reason->c_str());
  }
}

void PackageKitUpdates::show(const UpdateAnswer& answer) {
  NSAlert alert;
  alert.setMessageText(textForUser(answer));
  const bool isTrouble = answer.kind == Kind::Silent || answer.kind == Kind::Failed;
  alert.setAlertStyle(isTrouble ? NSAlertStyle::Warning : NSAlertStyle::Informational);
  const bool offersPage = answer.kind == Kind::Newer && hasSoftwareCentre();
  if (offersPage) alert.addButtonWithTitle(localized("Open Software Centre").toStdString());
  alert.addButtonWithTitle(localized(offersPage ? "Later" : "OK").toStdString());
  alert_ = windows_.showAlert(alert, [this, offersPage](std::size_t button) {
    alert_.reset();
    userWaits_ = false;
    if (offersPage && button == 0) openSoftwareCentre();
  });
}

}  // namespace linux_desktop
