#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "platform/appkit/NSImage.h"
#include "shared/SettingsKeys.h"
#include "support/ApplicationTest.h"

namespace presentation {

using Calls = std::vector<std::string>;

/// The program with some features selected, and what the desktop was asked.
class FeatureTest : public tests::ApplicationTest {
 protected:
  /// Starts the program with these switches on, given by their settings.
  void launchWith(std::initializer_list<std::string_view> features) {
    for (const std::string_view key : features) {
      store(key, true);
    }
    launch();
    desk.log.clear();
    desk.output.lines.clear();
  }
  /// A process with a Focus menu and its window, for scripts. A click on the checkbox flips it.
  void addControlCenter(int value = 0) {
    auto& process =
        desk.scripts.addApplication("System Events").add("application process", "ControlCenter");
    menu = &process.add("menu bar", "").add("menu bar item", "Focus");
    checkbox = &process.add("window", "").add("checkbox", "Do Not Disturb");
    checkbox->properties.insert_or_assign("value", value);
    checkbox->onClick = [](simulated::SimulatedScriptObject& self) {
      platform::Value& state = self.properties.at("value");
      state = state == platform::Value(1) ? 0 : 1;
    };
  }
  void clickMaster() { click(panel().toggleButtonPresentationMode); }
  /// The same, and nothing that follows has run yet.
  void pressMaster() {
    const auto master = panel().toggleButtonPresentationMode.lock();
    desk.screen.press(*master);
    desk.screen.release(*master);
  }
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

  /// The same, and what was printed between.
  template <typename Act>
  [[nodiscard]] Calls entriesOf(const Act& act) {
    desk.log.clear();
    act();
    return desk.log.entries();
  }

  simulated::SimulatedScriptObject* menu = nullptr;
  simulated::SimulatedScriptObject* checkbox = nullptr;
};

/// The program with covered desktop icons, and the desktop pictures to cover them with.
class CoversTest : public FeatureTest {
 protected:
  void launchCovering() { launchWith({shared::kUserdefaultsToggleDesktopIcons}); }

  /// A desktop picture behind the others, of these pixels; numbered from 1 on.
  void addPicture(const std::string& name, std::size_t width, std::size_t height) {
    desk.windowsOnScreen.addDesktopPicture(++lastPicture_, name, width, height);
  }
  void addPicture(const platform::port::ScreenInfo& screen, const std::string& name) {
    addPicture(name, static_cast<std::size_t>(screen.frame.width),
               static_cast<std::size_t>(screen.frame.height));
  }
  void clearPictures() {
    desk.windowsOnScreen.list.emplace();
    desk.windowsOnScreen.captures.clear();
    lastPicture_ = 0;
  }
  void changeSpace() {
    desk.workspaces.changed();
    desk.loop.settle();
  }

  /// The pictures of the covers, in their order; "" where there is none.
  [[nodiscard]] std::vector<std::string> shown() {
    std::vector<std::string> names;
    for (const platform::NSWindow* cover : desk.screen.covers()) {
      const auto view = std::dynamic_pointer_cast<platform::NSImageView>(cover->contentView());
      const auto* capture =
          view == nullptr
              ? nullptr
              : dynamic_cast<const simulated::SimulatedCapture*>(view->image()->capture().get());
      names.push_back(capture == nullptr ? "" : capture->content());
    }
    return names;
  }

 private:
  std::uint32_t lastPicture_ = 0;
};

}  // namespace presentation
