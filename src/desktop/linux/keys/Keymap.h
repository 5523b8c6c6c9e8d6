#pragma once

#include <xkbcommon/xkbcommon.h>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "desktop/linux/keys/KeyModifiers.h"
#include "platform/appkit/NSEvent.h"

namespace linux_desktop {

template <auto free>
struct XkbUnref {
  template <class T>
  void operator()(T* object) const {
    free(object);
  }
};

/// What keymaps that come from elsewhere are made in: it looks at no files, and says nothing.
using XkbContext = std::unique_ptr<xkb_context, XkbUnref<xkb_context_unref>>;
[[nodiscard]] XkbContext newXkbContext();
using XkbKeymap = std::unique_ptr<xkb_keymap, XkbUnref<xkb_keymap_unref>>;

/// The number of a key at the X server.
using Keycode = xkb_keycode_t;
/// The number of a layout of the keyboard, of which one is in effect.
using KeyboardGroup = xkb_layout_index_t;

/// What each key of a keyboard gives, and which keys give what.
///
/// A key counts by the character that it has on the layout in effect. Where that is a letter that
/// is not Latin, the Latin character counts which the same key has on another layout of the
/// keyboard, or else on that of the United States.
class Keymap {
 public:
  /// The code of a key for which the platform has none.
  static constexpr std::uint16_t kNoCode = 0xffff;

  /// `keymap` is not null.
  explicit Keymap(XkbKeymap keymap);

  /// The platform's virtual key code: by the key's plain character, else by the first other one of
  /// the key that the platform has a code for.
  [[nodiscard]] std::uint16_t codeOf(Keycode key, KeyboardGroup group) const;
  /// What the key gives with or without Shift and no other modifier, UTF-8; the platform's own
  /// characters for keys such as the arrows. None for a dead key and others without a character.
  [[nodiscard]] std::optional<std::string> textOf(Keycode key, KeyboardGroup group,
                                                  bool shift) const;
  /// The keys with that virtual key code, in order. Those that give its character with `shift` as
  /// it is; else those that have it in any way, in this layout before the others. None: no key has
  /// it.
  [[nodiscard]] std::vector<Keycode> keysOf(std::uint16_t code, KeyboardGroup group,
                                            bool shift) const;

  /// What the key gives with or without Shift, of whichever script; NoSymbol: nothing, or several.
  [[nodiscard]] xkb_keysym_t keysym(Keycode key, KeyboardGroup group, bool shift) const;

  /// "German", for people.
  [[nodiscard]] std::string layoutName(KeyboardGroup group) const;
  /// What the key gives without any modifier on the first layout, which is how modifiers are told.
  [[nodiscard]] xkb_keysym_t firstKeysym(Keycode key) const;
  /// Its modifiers.
  [[nodiscard]] const KeyModifiers& modifiers() const { return modifiers_; }
  /// The bits of the modifiers that keys with one of these keysyms set, without any other and on
  /// the first layout.
  [[nodiscard]] std::uint32_t modifiersSetBy(std::span<const xkb_keysym_t> keysyms) const;
  /// Whether the key alone is a modifier.
  [[nodiscard]] bool isModifier(Keycode key, KeyboardGroup group) const;
  /// Whether it is one of the block of digits at the side.
  [[nodiscard]] bool isOnKeypad(Keycode key, KeyboardGroup group) const;

 private:
  using State = std::unique_ptr<xkb_state, XkbUnref<xkb_state_unref>>;

  [[nodiscard]] xkb_keysym_t latinKeysym(Keycode key, KeyboardGroup group, bool shift) const;
  /// All that the key has on a layout, the plain one first.
  [[nodiscard]] std::vector<xkb_keysym_t> keysyms(Keycode key, KeyboardGroup group) const;
  [[nodiscard]] std::vector<Keycode> keysWhere(const std::function<bool(Keycode)>& test) const;

  XkbKeymap keymap_;
  /// Without Shift, and with it.
  std::array<State, 2> states_;
  xkb_mod_mask_t shift_;
  KeyModifiers modifiers_;
};

/// The event of a key that went down in a state of the modifiers; none for a modifier key. It has
/// characters only where a hot key that is made by them is one of this very key: the key's own, or
/// those that it has with the other state of Shift, as "1" for the "&" of a French keyboard; and
/// none while a modifier is held that no hot key can have.
[[nodiscard]] std::optional<platform::NSEvent> keyDownEvent(const Keymap& keymap, Keycode key,
                                                            KeyboardGroup group,
                                                            std::uint32_t state);

}  // namespace linux_desktop
