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

  /// See harness::Desk::writeSettings().
  void launch(const std::string& feature, const std::string& further = {}) {
    desk.writeSettings({feature}, further);
    program = desk.startCalmdeck(environment);
  }
  /// Turns the mode on or off, and returns when that was clicked.
  void toggle() {
    const auto mode = reader.await("Presentation mode");
    ASSERT_TRUE(mode) << program->errorOutput();
    ASSERT_TRUE(reader.act(*mode));
  }

  harness::WaylandDesk desk;
  harness::AccessibilityClient reader{desk};
  /// What is the program's alone.
  harness::Environment environment = harness::AccessibilityClient::accessibleEnvironment();
  std::unique_ptr<harness::Process> program;
};

}  // namespace wayland_test
