#include "desktop/gnome/GnomeDevices.h"

#include <stdexcept>

namespace gnome_test {

using harness::Button;

void GnomeDevices::moveTo(int x, int y) const {
  act("POINTER",
      "notify_absolute_motion(now, " + std::to_string(x) + ", " + std::to_string(y) + ")");
}

void GnomeDevices::turn(Button button, bool down) const {
  if (button == Button::WheelUp) throw std::runtime_error("this mouse has no wheel");
  // The shell counts as X does.
  act("POINTER", "notify_button(now, " + std::to_string(static_cast<int>(button)) +
                     ", C.ButtonState." + (down ? "PRESSED" : "RELEASED") + ")");
}

void GnomeDevices::move(std::string_view name, bool down) const {
  act("KEYBOARD", "notify_keyval(now, " + std::to_string(harness::keysymOf(name)) +
                      ", C.KeyState." + (down ? "PRESSED" : "RELEASED") + ")");
}

void GnomeDevices::plugIn() const {
  evaluate_(
      "const {Clutter: C} = imports.gi;"
      "const seat = C.get_default_backend().get_default_seat();"
      "const plug = type => seat.create_virtual_device(C.InputDeviceType[type + '_DEVICE']);"
      "global.calmdeckTest = {POINTER: plug('POINTER'), KEYBOARD: plug('KEYBOARD')}; 0");
}

void GnomeDevices::act(const std::string& device, const std::string& what) const {
  evaluate_(
      "const {Clutter: C, GLib} = imports.gi; const now = GLib.get_monotonic_time();"
      "global.calmdeckTest." +
      device + "." + what + "; 0");
}

}  // namespace gnome_test
