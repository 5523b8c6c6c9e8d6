#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>

#include "desktop/harness/Input.h"
#include "desktop/harness/WaylandClient.h"

struct zwlr_virtual_pointer_v1;
struct zwp_virtual_keyboard_v1;

namespace harness {

/// A mouse and a keyboard that a compositor takes from a client, as those of wlroots do. They are
/// plugged in as long as the object lives: programs see the seat's pointer and keyboard come with
/// the device and go with it, and would miss what follows too soon.
class VirtualDevices final : public Input {
 public:
  /// Throws std::runtime_error where the compositor takes none.
  explicit VirtualDevices(const std::string& socket);
  ~VirtualDevices() override;

  void moveTo(int x, int y) const override;
  void press(Button button) const override { turn(button, true); }
  void release(Button button) const override { turn(button, false); }
  void keyDown(std::string_view name) const override { move(name, true); }
  void keyUp(std::string_view name) const override { move(name, false); }
  /// Makes the keyboard one with these layouts, as "us,de", and one of them in effect, from 0.
  void useLayouts(const std::string& layouts, std::uint32_t inEffect);

 private:
  void plugKeyboard();
  void tellModifiers() const;
  void turn(Button button, bool down) const;
  void move(std::string_view name, bool down) const;
  [[nodiscard]] std::uint32_t keycode(std::string_view name) const;

  mutable WaylandClient client_;
  std::uint32_t layout_ = 0;
  std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)> keymap_{nullptr, xkb_keymap_unref};
  std::unique_ptr<xkb_state, decltype(&xkb_state_unref)> state_{nullptr, xkb_state_unref};
  zwlr_virtual_pointer_v1* pointer_ = nullptr;
  zwp_virtual_keyboard_v1* keyboard_ = nullptr;
};

}  // namespace harness
