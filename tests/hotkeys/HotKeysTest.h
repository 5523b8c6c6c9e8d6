#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "desktop/simulated/SimulatedDesktop.h"
#include "hotkeys/HotKey.h"
#include "hotkeys/HotKeysController.h"
#include "platform/Runtime.h"
#include "platform/carbon/KeyCodes.h"

namespace hotkeys {

/// The registry on a simulated desktop. Fails a test that leaves a hot key behind.
class HotKeysTest : public ::testing::Test {
 protected:
  using Combination = simulated::SimulatedHotKeys::Combination;
  using Combinations = std::set<Combination>;
  using Lines = std::vector<std::string>;

  static constexpr Combination kFirst{platform::kVK_ANSI_K, platform::controlKey};
  static constexpr Combination kSecond{platform::kVK_F5, platform::cmdKey};

  HotKeysTest() {
    HotKeysController::setUnavailableHandler([this] { ++refusals; });
  }
  ~HotKeysTest() override = default;
  void TearDown() override {
    runtime_.reset();
    EXPECT_EQ(desk.leftBehind(), Lines{});
  }

  /// A hot key that notes its events as `name` and "down" or "up".
  [[nodiscard]] std::shared_ptr<HotKey> make(Combination combination, const std::string& name) {
    return HotKey::make(combination.keyCode, combination.modifiers, note(name + " down"),
                        note(name + " up"));
  }
  [[nodiscard]] HotKey::Handler note(std::string what) {
    return [this, what = std::move(what)] { events.push_back(what); };
  }

  simulated::SimulatedDesktop desk;
  int refusals = 0;
  Lines events;

 private:
  std::unique_ptr<platform::Runtime> runtime_ = std::make_unique<platform::Runtime>(desk);
};

}  // namespace hotkeys
