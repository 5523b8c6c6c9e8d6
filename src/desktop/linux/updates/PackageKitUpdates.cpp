#include "desktop/linux/updates/PackageKitUpdates.h"

#include <gio/gio.h>

#include <QCoreApplication>
#include <array>
#include <cstddef>
#include <string>
#include <utility>

#include "desktop/linux/language/Language.h"
#include "desktop/linux/log/Log.h"
#include "platform/appkit/NSAlert.h"

namespace linux_desktop {
namespace {

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
