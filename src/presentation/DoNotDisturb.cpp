#include <string>
#include <string_view>

#include "platform/foundation/CFPreferences.h"
#include "platform/foundation/NSDistributedNotificationCenter.h"
#include "platform/foundation/NSProcessInfo.h"
#include "presentation/ViewController.h"
#include "scripting/ScriptRunner.h"

namespace presentation {
namespace {

// Up to the version before 12, Notification Center reads its own preferences again on request.
constexpr std::string_view kNotificationCenter = "com.apple.notificationcenterui";
constexpr std::string_view kPreferencesChanged = "com.apple.notificationcenterui.dndprefs_changed";
// Minutes after midnight: the whole day.
constexpr double kDayStart = 0.0;
constexpr double kDayEnd = 1440.0;

/// Opens the Focus menu, clicks the checkbox unless it is in the wanted state ("1" or "0") already,
/// and closes the menu with Escape.
std::string focusScript(std::string_view wantedState) {
  return R"(    tell application "System Events"
        tell its application process "ControlCenter"
            tell its menu bar 1
                click its menu bar item "Focus"
            end tell
            tell its window
                set currentValue to value of checkbox "Do Not Disturb"
                set currentState to currentValue as text
                if currentState is not equal to ")" +
         std::string(wantedState) + R"(" then
                    click checkbox "Do Not Disturb"
                end if
            end tell
        end tell
        key code 53
    end tell

)";
}

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
    scripting::runAppleScript(focusScript("1"));
    return;
  }
  setPreference("dndStart", kDayStart);
  setPreference("dndEnd", kDayEnd);
  setPreference("doNotDisturb", true);
  publishPreferences();
}

void ViewController::turnOffDoNotDisturb() {
  if (isControlCenterSystem()) {
    scripting::runAppleScript(focusScript("0"));
    return;
  }
  setPreference("dndStart", std::nullopt);
  setPreference("dndEnd", std::nullopt);
  setPreference("doNotDisturb", false);
  publishPreferences();
}

}  // namespace presentation
