#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/x11/XKeyboard.h"
#include "desktop/linux/xserver/XEvents.h"
#include "platform/port/HotKeys.h"

struct xcb_input_key_press_event_t;

namespace linux_desktop {

/// Hot keys as passive grabs on the root window. No grab of ours ever holds up the keyboard: what
/// is typed while a hot key is down comes to us, and from its release on to where it belongs,
/// whether this process runs or not.
class XHotKeys final : public platform::port::HotKeys {
 public:
  /// Null, after one line on standard error, where the server has no XInput 2.2. Both outlive this.
  [[nodiscard]] static std::unique_ptr<XHotKeys> open(XEvents& events, XKeyboard& keyboard);

  void setClient(platform::port::HotKeysClient* client) override { client_ = client; }
  [[nodiscard]] platform::OSStatus registerHotKey(platform::port::HotKeyNumber number,
                                                  std::uint32_t keyCode, std::uint32_t modifiers,
                                                  const std::string& purpose) override;
  void unregisterHotKey(platform::port::HotKeyNumber number) override;

 private:
  struct HotKey {
    platform::port::HotKeyNumber number;
    std::uint32_t keyCode;
    std::uint32_t modifiers;
    /// What is grabbed for it: none while the layout in effect lacks it, or another program has it.
    std::optional<XChord> chord = {};
    /// The key that is down for it.
    std::optional<xcb_keycode_t> down = {};
  };

  XHotKeys(XEvents& events, XKeyboard& keyboard, std::uint8_t extension);
  /// All of it or nothing: false when another program, or a hot key of ours, has a part of it.
  [[nodiscard]] bool grab(const XChord& chord);
  void ungrab(const XChord& chord);
  [[nodiscard]] bool isOurs(const XChord& chord) const;
  void adapt();
  void handle(const xcb_generic_event_t& event);
  void pressed(const xcb_input_key_press_event_t& press);
  void released(xcb_keycode_t key);

  XEvents& events_;
  XKeyboard& keyboard_;
  platform::port::HotKeysClient* client_ = nullptr;
  std::vector<HotKey> hotKeys_;
  /// XInput's number.
  std::uint8_t extension_;
  /// The key with which the keyboard became ours; with its release we hear no more.
  std::optional<xcb_keycode_t> grabbing_;
  std::unique_ptr<XEvents::Watch> watch_;
};

}  // namespace linux_desktop
