#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "settings/SettingsKeys.h"
#include "support/ApplicationTest.h"

namespace presentation {

using Calls = std::vector<std::string>;

/// The program with some features selected, and what the desktop was asked.
class FeatureTest : public tests::ApplicationTest {
 protected:
  /// Starts the program with these switches on, given by their settings.
  void launchWith(std::initializer_list<std::string_view> features) {
    for (const std::string_view key : features) {
      desk.settings.values.insert_or_assign(std::string(key), true);
    }
    launch();
    desk.log.clear();
    desk.output.lines.clear();
  }
  void clickMaster() { click(panel().toggleButtonPresentationMode); }
  void post(std::int64_t index, bool isOn) {
    platform::NSNotificationCenter::defaultCenter().postNotificationName(
        "toggle", nullptr, platform::Dictionary{{"isOn", isOn}, {"index", index}});
  }

  /// What the desktop was asked while `act` ran; only what begins with `prefix`.
  template <typename Act>
  [[nodiscard]] Calls callsOf(const Act& act, std::string_view prefix = "") {
    desk.log.clear();
    act();
    return desk.log.calls(prefix);
  }
};

}  // namespace presentation
