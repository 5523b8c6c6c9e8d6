#pragma once

#include <memory>
#include <string_view>

#include "app/AppDelegate.h"
#include "app/ControllerFactory.h"
#include "support/DeskTest.h"

namespace tests {

/// The whole program on a simulated desktop, driven as a user does.
class ApplicationTest : public DeskTest {
 protected:
  ApplicationTest();

  /// Starts the program and lets half a second pass, so that the panel is open.
  void launch();
  /// Starts the program and does not let time pass.
  void launchOnly();
  /// Ends the program as a user does who comes back later: what is stored stays.
  void relaunch();

  void store(std::string_view key, platform::Value value) {
    desk.settings.values.insert_or_assign(std::string(key), std::move(value));
  }
  /// Speakers, the default device and not muted.
  void addSpeakers() {
    desk.audio.addOutputDevice(kSpeakers);
    desk.audio.setDefaultOutputDevice(kSpeakers);
  }
  /// Press and release, and all that follows at once.
  void click(const std::weak_ptr<platform::NSView>& control);
  [[nodiscard]] presentation::ViewController& panel() { return *app::sharedViewController(); }
  [[nodiscard]] app::AppDelegate& delegate() { return *app::sharedAppDelegate(); }

  static constexpr platform::AudioObjectID kSpeakers = 42;

 private:
  static void prepare();
};

}  // namespace tests
