#include "desktop/linux/updates/PackageKitUpdates.h"

#include <gio/gio.h>

#include <QCoreApplication>
#include <string>
#include <utility>

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

}  // namespace

bool hasSoftwareCentre() {
  GAppInfo* handler = g_app_info_get_default_for_uri_scheme(kScheme);
  if (handler == nullptr) return false;
  g_object_unref(handler);
  return true;
}

void openSoftwareCentre() {
  g_app_info_launch_default_for_uri_async(kPage, nullptr, nullptr, &launched, nullptr);
}

using platform::NSAlert;
using platform::NSAlertStyle;
using Kind = UpdateAnswer::Kind;
using Manner = PackageKitQuestion::Manner;

namespace {

const QString kPackage = QStringLiteral("calmdeck");

std::string textOf(const UpdateAnswer& answer) {
  const std::string detail = answer.detail.toStdString();
  const std::string running = QCoreApplication::applicationVersion().toStdString();
  switch (answer.kind) {
    case Kind::Newer:
      return "Calmdeck " + detail + " is available, this is " + running +
             ". It comes with the system's updates.";
    case Kind::None:
      return "The system knows of no newer version of Calmdeck than " + running + ".";
    case Kind::Absent:
      return "This is Calmdeck " + running + ". New versions come with the system's updates.";
    case Kind::Silent:
      return "The system's package service does not answer. Please try again later.";
    case Kind::Failed:
      return "The system's package service could not look for updates." +
             (detail.empty() ? "" : "\n\n" + detail);
  }
  return {};
}

bool isTrouble(Kind kind) {
  return kind == Kind::Silent || kind == Kind::Failed;
}

}  // namespace

PackageKitUpdates::PackageKitUpdates(platform::port::Windows& windows, Notifier& notifier,
                                     Patience patience)
    : windows_(windows), notifier_(notifier), patience_(patience) {}

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
        qCInfo(lcUpdates, "%s", textOf(answer).c_str());
        // It is still in its own call.
        question_.release()->deleteLater();
        answered(answer);
      });
}

void PackageKitUpdates::notify(const UpdateAnswer& answer) {
  if (answer.kind != Kind::Newer) return;
  if (const auto reason = notifier_.show(textOf(answer))) {
    qCInfo(lcUpdates, "%s", reason->c_str());
  }
}

void PackageKitUpdates::show(const UpdateAnswer& answer) {
  NSAlert alert;
  alert.setMessageText(textOf(answer));
  alert.setAlertStyle(isTrouble(answer.kind) ? NSAlertStyle::Warning : NSAlertStyle::Informational);
  const bool offersPage = answer.kind == Kind::Newer && hasSoftwareCentre();
  if (offersPage) alert.addButtonWithTitle("Open Software Centre");
  alert.addButtonWithTitle(offersPage ? "Later" : "OK");
  alert_ = windows_.showAlert(alert, [this, offersPage](std::size_t button) {
    alert_.reset();
    userWaits_ = false;
    if (offersPage && button == 0) openSoftwareCentre();
  });
}

}  // namespace linux_desktop
