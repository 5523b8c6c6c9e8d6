#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/foundation/Process.h"
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

/// The script that opens the Focus menu, clicks its Do Not Disturb checkbox unless that is in the
/// wanted state ("1" or "0") already, and closes the menu with Escape.
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

void setDoNotDisturb(bool isOn) {
  if (platform::isOperatingSystemAtLeastVersion(12, 0, 0)) {
    shared::runAppleScript(focusScript(isOn ? "1" : "0"));
    return;
  }
  setPreference("dndStart", isOn ? std::optional<platform::Value>(kDayStart) : std::nullopt);
  setPreference("dndEnd", isOn ? std::optional<platform::Value>(kDayEnd) : std::nullopt);
  setPreference("doNotDisturb", isOn);
  publishPreferences();
}

}  // namespace

void ViewController::turnOnDoNotDisturb() {
  setDoNotDisturb(true);
}

void ViewController::turnOffDoNotDisturb() {
  setDoNotDisturb(false);
}

}  // namespace presentation
