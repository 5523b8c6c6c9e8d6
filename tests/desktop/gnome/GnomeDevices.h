#pragma once

#include <functional>
#include <string>

#include "desktop/harness/Input.h"

namespace gnome_test {

/// A mouse and a keyboard that the shell itself plugs into its seat.
class GnomeDevices final : public harness::Input {
 public:
  /// `evaluate` runs a script in the shell.
  explicit GnomeDevices(std::function<void(const std::string& script)> evaluate)
      : evaluate_(std::move(evaluate)) {}

  /// Programs that start after this find them there, and miss nothing of what they do.
  void plugIn() const;

  void moveTo(int x, int y) const override;
  void press(harness::Button button) const override { turn(button, true); }
  void release(harness::Button button) const override { turn(button, false); }
  void keyDown(std::string_view name) const override { move(name, true); }
  void keyUp(std::string_view name) const override { move(name, false); }

 private:
  void turn(harness::Button button, bool down) const;
  void move(std::string_view name, bool down) const;
  void act(const std::string& device, const std::string& what) const;

  std::function<void(const std::string& script)> evaluate_;
};

}  // namespace gnome_test
