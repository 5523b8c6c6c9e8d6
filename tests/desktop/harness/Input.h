#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/harness/XConnection.h"

namespace harness {

enum class Button : std::uint8_t { Left = 1, Middle = 2, Right = 3 };

/// A mouse and a keyboard: what they do goes through the server like a real device's events, grabs
/// included. Each call returns once the server has taken it; what programs make of it comes later.
class Input {
 public:
  Input() = default;
  virtual ~Input() = default;
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  /// In the coordinates of the whole desktop.
  virtual void moveTo(int x, int y) const = 0;
  virtual void press(Button button) const = 0;
  virtual void release(Button button) const = 0;
  void click(int x, int y, Button button = Button::Left) const;

  /// Keys by the X names of a few (`Tab`, `space`, `Escape`, `F5`, `ctrl`, `shift`, `alt`,
  /// `super`, …) or by their character, joined with `+`: pressed in this order, released in the
  /// other. Throws std::runtime_error for a key that the layout lacks.
  void key(std::string_view chord) const;
  virtual void keyDown(std::string_view name) const = 0;
  virtual void keyUp(std::string_view name) const = 0;
};

/// The X keysym of such a key.
[[nodiscard]] xcb_keysym_t keysymOf(std::string_view name);

/// Those of an X server.
class XInput final : public Input {
 public:
  explicit XInput(const XConnection& x) : x_(x) {}

  void moveTo(int x, int y) const override { fake(XCB_MOTION_NOTIFY, 0, x, y); }
  void press(Button button) const override {
    fake(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
  }
  void release(Button button) const override {
    fake(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
  }
  void keyDown(std::string_view name) const override { placeDown(keycode(name)); }
  void keyUp(std::string_view name) const override { placeUp(keycode(name)); }
  /// Keys by their place on the keyboard, as the server numbers them, whatever the layout.
  void places(const std::vector<std::uint8_t>& keycodes) const;
  void placeDown(std::uint8_t keycode) const { fake(XCB_KEY_PRESS, keycode); }
  void placeUp(std::uint8_t keycode) const { fake(XCB_KEY_RELEASE, keycode); }

 private:
  void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0) const;
  [[nodiscard]] std::uint8_t keycode(std::string_view name) const;

  const XConnection& x_;
};

}  // namespace harness
