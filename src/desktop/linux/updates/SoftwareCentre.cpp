// GIO first: it has a member that is called as one of Qt's keywords.
#include <gio/gio.h>

#include "desktop/linux/updates/SoftwareCentre.h"
#include "desktop/linux/log/Log.h"

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

}  // namespace linux_desktop
