#pragma once

#include <chrono>
#include <memory>
#include <string_view>

#include "app/AppDelegate.h"
#include "app/ControllerFactory.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSBundle.h"
#include "resources/Resources.h"
#include "support/DeskTest.h"

namespace tests {

/// The whole program on a simulated desktop, driven as a user does.
class ApplicationTest : public DeskTest {
 protected:
  ApplicationTest() { prepare(); }

  /// Starts the program and lets half a second pass, so that the panel is open.
  void launch() {
    launchOnly();
    desk.loop.advance(std::chrono::milliseconds(500));
  }
  /// Starts the program and does not let time pass.
  void launchOnly() { platform::NSApplicationMain(); }
  /// Ends the program as a user does who comes back later: what is stored stays.
  void relaunch() {
    end();
    desk.output.lines.clear();
    desk.log.clear();
    desk.loop.restart();
    begin();
    prepare();
    launch();
  }

  void store(std::string_view key, platform::Value value) {
    desk.settings.values.insert_or_assign(std::string(key), std::move(value));
  }
  /// Speakers, the default device and not muted.
  void addSpeakers() {
    desk.audio.addOutputDevice(kSpeakers);
    desk.audio.setDefaultOutputDevice(kSpeakers);
  }
  /// Press and release, and all that follows at once.
  void click(const std::weak_ptr<platform::NSView>& control) {
    const auto view = control.lock();
    ASSERT_TRUE(view);
    desk.screen.press(*view);
    desk.screen.release(*view);
    desk.loop.settle();
  }
  [[nodiscard]] presentation::ViewController& panel() { return *app::sharedViewController(); }
  [[nodiscard]] app::AppDelegate& delegate() { return *app::sharedAppDelegate(); }

  static constexpr platform::AudioObjectID kSpeakers = 42;

 private:
  static void prepare() {
    for (const resources::File& file : resources::files()) {
      platform::NSBundle::mainBundle().addResource(std::string(file.name), file.bytes);
    }
    app::registerClasses();
  }
};

}  // namespace tests
