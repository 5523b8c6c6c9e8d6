#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string_view>

#include "app/AppDelegate.h"
#include "app/ControllerFactory.h"
#include "desktop/simulated/SimulatedDesktop.h"
#include "platform/Runtime.h"

namespace tests {

/// The whole program on a simulated desktop, driven as a user does. Fails a test that leaves
/// something behind.
class ApplicationTest : public ::testing::Test {
 protected:
  ApplicationTest();
  ~ApplicationTest() override = default;
  void TearDown() override;

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
  simulated::SimulatedDesktop desk;

 private:
  void makeRuntime();
  void end();
  std::unique_ptr<platform::Runtime> runtime_;
};

}  // namespace tests
