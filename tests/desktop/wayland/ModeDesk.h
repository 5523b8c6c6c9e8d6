#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "desktop/harness/AccessibilityClient.h"
#include "desktop/harness/WaylandDesk.h"

namespace wayland_test {

/// A private Wayland desktop with the real program on it, whose mode does one thing.
class ModeDesk {
 public:
  explicit ModeDesk(const harness::WaylandOptions& options) : desk(options) {}

  /// `feature` is the end of its switch's key, `further` what else the settings hold.
  void launch(const std::string& feature, const std::string& further = {}) {
    std::string settings = R"({"kUserdeaultsLaunchAtLogin": false)" + further;
    for (const char* each : {"DesktopIcons", "Dnd", "HideActiveApps", "SpeakerOff", "Wallpaper"}) {
      settings += std::string(", \"kUserdefaultsToggle") + each +
                  (each == feature ? "\": true" : "\": false");
    }
    desk.home().writeConfig("calmdeck/settings.json", settings + "}");
    program = desk.startCalmdeck(harness::AccessibilityClient::accessibleEnvironment());
  }
  /// Turns the mode on or off, and returns when that was clicked.
  void toggle() {
    const harness::AccessibilityClient reader(desk);
    const auto mode = reader.await("Presentation mode");
    ASSERT_TRUE(mode) << program->errorOutput();
    ASSERT_TRUE(reader.act(*mode));
  }

  harness::WaylandDesk desk;
  std::unique_ptr<harness::Process> program;
};

}  // namespace wayland_test
