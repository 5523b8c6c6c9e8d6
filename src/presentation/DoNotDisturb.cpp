#include <string_view>

#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/foundation/Process.h"
#include "presentation/FocusScript.h"
#include "presentation/ViewController.h"
#include "shared/ScriptRunner.h"

namespace presentation {
namespace {

// Up to the version before 12, Notification Center reads its own preferences again on request.
constexpr std::string_view kNotificationCenter = "com.apple.notificationcenterui";
constexpr std::string_view kPreferencesChanged = "com.apple.notificationcenterui.dndprefs_changed";
// Minutes after midnight: the whole day.
constexpr double kDayStart = 0.0;
constexpr double kDayEnd = 1440.0;

bool isControlCenterSystem() {
  return platform::isOperatingSystemAtLeastVersion(12, 0, 0);
}

void setPreference(std::string_view key, std::optional<platform::Value> value) {
  platform::CFPreferencesSetValue(key, std::move(value), kNotificationCenter,
                                  platform::kCFPreferencesCurrentUser,
                                  platform::kCFPreferencesCurrentHost);
}

void publishPreferences() {
  platform::CFPreferencesSynchronize(kNotificationCenter, platform::kCFPreferencesCurrentUser,
                                     platform::kCFPreferencesCurrentHost);
  platform::NSDistributedNotificationCenter::defaultCenter().postNotificationName(
      kPreferencesChanged);
}

}  // namespace

void ViewController::turnOnDoNotDisturb() {
  if (isControlCenterSystem()) {
    shared::runAppleScript(focusScript("1"));
    return;
  }
  setPreference("dndStart", kDayStart);
  setPreference("dndEnd", kDayEnd);
  setPreference("doNotDisturb", true);
  publishPreferences();
}

void ViewController::turnOffDoNotDisturb() {
  if (isControlCenterSystem()) {
    shared::runAppleScript(focusScript("0"));
    return;
  }
  setPreference("dndStart", std::nullopt);
  setPreference("dndEnd", std::nullopt);
  setPreference("doNotDisturb", false);
  publishPreferences();
}

}  // namespace presentation
