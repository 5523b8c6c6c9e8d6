#include "desktop/harness/Input.h"

#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace harness {

namespace {

/// Keys that a keyboard has on both sides.
constexpr std::pair<std::string_view, const char*> kLeftOnes[] = {
    {"shift", "Shift_L"}, {"ctrl", "Control_L"}, {"alt", "Alt_L"}, {"super", "Super_L"}};

std::vector<std::string> parts(std::string_view chord) {
  std::vector<std::string> names;
  for (std::size_t start = 0; start <= chord.size();) {
    const std::size_t end = std::min(chord.find('+', start), chord.size());
    names.emplace_back(chord.substr(start, end - start));
    start = end + 1;
  }
  return names;
}

}  // namespace

xcb_keysym_t keysymOf(std::string_view name) {
  if (name.size() == 1) return static_cast<unsigned char>(name.front());
  std::string known(name);
  for (const auto& [both, left] : kLeftOnes)
    if (name == both) known = left;
  const xcb_keysym_t keysym = xkb_keysym_from_name(known.c_str(), XKB_KEYSYM_NO_FLAGS);
  if (keysym == XKB_KEY_NoSymbol) throw std::runtime_error("unknown key " + known);
  return keysym;
}

void XInput::fake(std::uint8_t type, std::uint8_t detail, int x, int y) const {
  xcb_test_fake_input(x_.get(), type, detail, XCB_CURRENT_TIME, x_.root(),
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
  // The answer tells that the server has come past the event.
  const XReply<xcb_get_input_focus_reply_t> passed(
      xcb_get_input_focus_reply(x_.get(), xcb_get_input_focus(x_.get()), nullptr));
}

void Input::click(int x, int y, Button button) const {
  moveTo(x, y);
  press(button);
  release(button);
}

void Input::key(std::string_view chord) const {
  const std::vector<std::string> names = parts(chord);
  for (const std::string& name : names) keyDown(name);
  std::for_each(names.rbegin(), names.rend(), [this](const std::string& name) { keyUp(name); });
}

void XInput::places(const std::vector<std::uint8_t>& keycodes) const {
  for (const std::uint8_t keycode : keycodes) placeDown(keycode);
  std::for_each(keycodes.rbegin(), keycodes.rend(),
                [this](std::uint8_t keycode) { placeUp(keycode); });
}

std::uint8_t XInput::keycode(std::string_view name) const {
  const xcb_keysym_t wanted = keysymOf(name);
  const xcb_setup_t* setup = xcb_get_setup(x_.get());
  const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const auto cookie = xcb_get_keyboard_mapping(x_.get(), setup->min_keycode, count);
  const XReply<xcb_get_keyboard_mapping_reply_t> map(
      xcb_get_keyboard_mapping_reply(x_.get(), cookie, nullptr));
  const xcb_keysym_t* keysyms = map ? xcb_get_keyboard_mapping_keysyms(map.get()) : nullptr;
  for (unsigned code = 0; map && code < count; ++code) {
    if (keysyms[std::size_t{code} * map->keysyms_per_keycode] == wanted)
      return static_cast<std::uint8_t>(setup->min_keycode + code);
  }
  throw std::runtime_error("no key makes " + std::string(name));
}

}  // namespace harness
