#include "desktop/linux/keys/Keymap.h"

#include <QChar>
#include <QString>
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <utility>

#include "desktop/linux/keys/KeyTable.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

/// The rows of keys as XKB names their places, and what the United States have on them.
struct PlaceRow {
  std::string_view prefix;
  std::string_view plain;
  std::string_view shifted;
};
constexpr PlaceRow kPlaces[] = {
    {"AE", "1234567890-=", "!@#$%^&*()_+"},
    {"AD", "qwertyuiop[]", "QWERTYUIOP{}"},
    {"AC", "asdfghjkl;'", "ASDFGHJKL:\""},
    {"AB", "zxcvbnm,./", "ZXCVBNM<>?"},
};
constexpr PlaceRow kSinglePlaces[] = {{"TLDE", "`", "~"}, {"BKSL", "\\", "|"}};

constexpr char32_t kEndOfLatin = 0x24f;

/// A letter, or a part of one, of another script than Latin.
bool isForeignLetter(xkb_keysym_t keysym) {
  const char32_t character = xkb_keysym_to_utf32(keysym);
  return character > kEndOfLatin &&
         (QChar::isLetterOrNumber(character) || QChar::isMark(character)) &&
         QChar::script(character) != QChar::Script_Latin;
}

xkb_keysym_t keysymAtPlace(std::string_view name, bool shift) {
  const auto character = [shift](const PlaceRow& row, std::size_t column) {
    // Of these the keysym is the character.
    return static_cast<xkb_keysym_t>((shift ? row.shifted : row.plain)[column]);
  };
  for (const PlaceRow& row : kSinglePlaces) {
    if (row.prefix == name) return character(row, 0);
  }
  for (const PlaceRow& row : kPlaces) {
    if (name.size() != 4 || !name.starts_with(row.prefix)) continue;
    const auto number = std::strtoul(std::string(name.substr(2)).c_str(), nullptr, 10);
    if (number >= 1 && number <= row.plain.size()) return character(row, number - 1);
  }
  return XKB_KEY_NoSymbol;
}

std::vector<xkb_keysym_t> keysymsOf(std::uint16_t code) {
  std::vector<xkb_keysym_t> keysyms;
  for (const KeyRow& row : keyTable()) {
    if (row.code == code) keysyms.push_back(row.keysym);
  }
  return keysyms;
}

}  // namespace

XkbContext newXkbContext() {
  XkbContext context(xkb_context_new(static_cast<xkb_context_flags>(
      XKB_CONTEXT_NO_DEFAULT_INCLUDES | XKB_CONTEXT_NO_ENVIRONMENT_NAMES)));
  xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
  return context;
}

Keymap::Keymap(XkbKeymap keymap)
    : keymap_(std::move(keymap)),
      states_{State(xkb_state_new(keymap_.get())), State(xkb_state_new(keymap_.get()))},
      shift_(xkb_mod_mask_t{1} << xkb_keymap_mod_get_index(keymap_.get(), XKB_MOD_NAME_SHIFT)),
      modifiers_(*this) {}

xkb_keysym_t Keymap::keysym(Keycode key, KeyboardGroup group, bool shift) const {
  xkb_state* state = states_[shift ? 1 : 0].get();
  xkb_state_update_mask(state, shift ? shift_ : 0, 0, 0, 0, 0, group);
  return xkb_state_key_get_one_sym(state, key);
}

xkb_keysym_t Keymap::latinKeysym(Keycode key, KeyboardGroup group, bool shift) const {
  const xkb_keysym_t own = keysym(key, group, shift);
  if (!isForeignLetter(own)) return own;
  const KeyboardGroup layouts = xkb_keymap_num_layouts_for_key(keymap_.get(), key);
  for (KeyboardGroup other = 0; other < layouts; ++other) {
    const xkb_keysym_t there = keysym(key, other, shift);
    if (xkb_keysym_to_utf32(there) != 0 && !isForeignLetter(there)) return there;
  }
  const char* place = xkb_keymap_key_get_name(keymap_.get(), key);
  return place == nullptr ? xkb_keysym_t{XKB_KEY_NoSymbol} : keysymAtPlace(place, shift);
}

std::vector<xkb_keysym_t> Keymap::keysyms(Keycode key, KeyboardGroup group) const {
  xkb_state* state = states_.front().get();
  xkb_state_update_mask(state, 0, 0, 0, 0, 0, group);
  // A key with fewer layouts than the keyboard has another one in effect.
  const KeyboardGroup layout = xkb_state_key_get_layout(state, key);
  if (layout == XKB_LAYOUT_INVALID) return {};
  std::vector<xkb_keysym_t> all;
  const auto levels = xkb_keymap_num_levels_for_key(keymap_.get(), key, layout);
  for (xkb_level_index_t level = 0; level < levels; ++level) {
    const xkb_keysym_t* here = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), key, layout, level, &here);
    all.push_back(count == 1 ? *here : xkb_keysym_t{XKB_KEY_NoSymbol});
  }
  return all;
}

std::uint16_t Keymap::codeOf(Keycode key, KeyboardGroup group) const {
  std::vector<xkb_keysym_t> candidates = keysyms(key, group);
  candidates.insert(candidates.begin(), latinKeysym(key, group, false));
  for (const xkb_keysym_t candidate : candidates) {
    if (const KeyRow* row = keyRowOf(candidate)) return row->code;
  }
  return kNoCode;
}

std::optional<std::string> Keymap::textOf(Keycode key, KeyboardGroup group, bool shift) const {
  const xkb_keysym_t keysym = latinKeysym(key, group, shift);
  const KeyRow* row = keyRowOf(keysym);
  const char32_t character =
      row != nullptr && row->text != 0 ? row->text : xkb_keysym_to_utf32(keysym);
  if (character == 0) return std::nullopt;
  return QString::fromUcs4(&character, 1).toStdString();
}

std::vector<Keycode> Keymap::keysWhere(const std::function<bool(Keycode)>& test) const {
  std::vector<Keycode> found;
  const Keycode last = xkb_keymap_max_keycode(keymap_.get());
  for (Keycode key = xkb_keymap_min_keycode(keymap_.get()); key <= last; ++key) {
    if (test(key)) found.push_back(key);
  }
  return found;
}

std::vector<Keycode> Keymap::keysOf(std::uint16_t code, KeyboardGroup group, bool shift) const {
  const std::vector<xkb_keysym_t> wanted = keysymsOf(code);
  for (const xkb_keysym_t keysym : wanted) {
    auto keys = keysWhere(
        [&](Keycode key) { return xkb_keysym_to_lower(latinKeysym(key, group, shift)) == keysym; });
    if (!keys.empty()) return keys;
  }
  const auto haveAtLevel = [&](KeyboardGroup layout, std::size_t level, xkb_keysym_t keysym) {
    return keysWhere([&](Keycode key) {
      const auto all = keysyms(key, layout);
      return level < all.size() && all[level] == keysym;
    });
  };
  std::vector<KeyboardGroup> layouts{group};
  for (KeyboardGroup other = 0; other < xkb_keymap_num_layouts(keymap_.get()); ++other) {
    if (other != group) layouts.push_back(other);
  }
  constexpr std::size_t kLevels = 8;
  for (const KeyboardGroup layout : layouts) {
    for (const xkb_keysym_t keysym : wanted) {
      for (std::size_t level = 0; level < kLevels; ++level) {
        auto keys = haveAtLevel(layout, level, keysym);
        if (!keys.empty()) return keys;
      }
    }
  }
  return {};
}

std::string Keymap::layoutName(KeyboardGroup group) const {
  const char* name = xkb_keymap_layout_get_name(keymap_.get(), group);
  return name == nullptr ? std::string("in use") : name;
}

xkb_keysym_t Keymap::firstKeysym(Keycode key) const {
  const xkb_keysym_t* keysyms = nullptr;
  const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), key, 0, 0, &keysyms);
  return count > 0 ? *keysyms : xkb_keysym_t{XKB_KEY_NoSymbol};
}

std::uint32_t Keymap::modifiersSetBy(std::span<const xkb_keysym_t> keysyms) const {
  std::uint32_t bits = 0;
  for (const Keycode key : keysWhere([&](Keycode one) {
         return std::ranges::find(keysyms, firstKeysym(one)) != keysyms.end();
       })) {
    const State state(xkb_state_new(keymap_.get()));
    xkb_state_update_key(state.get(), key, XKB_KEY_DOWN);
    bits |= xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_EFFECTIVE);
  }
  return bits;
}

bool Keymap::isModifier(Keycode key, KeyboardGroup group) const {
  const xkb_keysym_t plain = keysym(key, group, false);
  return (plain >= XKB_KEY_Shift_L && plain <= XKB_KEY_Hyper_R) ||
         (plain >= XKB_KEY_ISO_Lock && plain <= XKB_KEY_ISO_Level5_Lock) ||
         plain == XKB_KEY_Mode_switch || plain == XKB_KEY_Num_Lock;
}

bool Keymap::isOnKeypad(Keycode key, KeyboardGroup group) const {
  const xkb_keysym_t plain = keysym(key, group, false);
  return plain >= XKB_KEY_KP_Space && plain <= XKB_KEY_KP_Equal;
}

namespace {

using platform::NSEventModifierFlags;

/// U+F700 to U+F8FF, where the platform has the characters of keys that write nothing.
bool isFunctionText(const std::string& text) {
  return text >= "\uf700" && text <= "\uf8ff";
}

/// The arrows count as keys of the block at the side, as on the platform's keyboards.
bool isArrowText(const std::string& text) {
  return text >= "\uf700" && text <= "\uf703";
}

/// These count by their codes, all others by their characters.
constexpr std::uint16_t kFunctionKeys[] = {platform::kVK_F1,  platform::kVK_F2,  platform::kVK_F3,
                                           platform::kVK_F4,  platform::kVK_F5,  platform::kVK_F6,
                                           platform::kVK_F7,  platform::kVK_F8,  platform::kVK_F9,
                                           platform::kVK_F10, platform::kVK_F11, platform::kVK_F12};

/// The code that a hot key gets by a character; Escape has a code, but no such character.
std::optional<std::uint16_t> codeNamed(const std::string& text) {
  constexpr char kEscape = '\x1b';
  if (text.size() != 1 || text.front() == kEscape) return std::nullopt;
  const KeyRow* row = keyRowOf(xkb_utf32_to_keysym(static_cast<unsigned char>(text.front())));
  return row == nullptr ? std::nullopt : std::optional(row->code);
}

/// The character by which a hot key of this key is found again, or else the one that the key has
/// with the other state of Shift.
std::optional<std::string> nameOf(const Keymap& keymap, Keycode key, KeyboardGroup group,
                                  bool shift) {
  const auto leadsBack = [&](std::uint16_t code) {
    const auto keys = keymap.keysOf(code, group, shift);
    return std::ranges::find(keys, key) != keys.end();
  };
  const std::uint16_t own = keymap.codeOf(key, group);
  if (std::ranges::find(kFunctionKeys, own) != std::end(kFunctionKeys)) {
    return leadsBack(own) ? keymap.textOf(key, group, shift) : std::nullopt;
  }
  for (const bool withShift : {shift, !shift}) {
    auto text = keymap.textOf(key, group, withShift);
    const auto code = text ? codeNamed(*text) : std::nullopt;
    if (code && leadsBack(*code)) return text;
  }
  return std::nullopt;
}

}  // namespace

std::optional<platform::NSEvent> keyDownEvent(const Keymap& keymap, Keycode key,
                                              KeyboardGroup group, std::uint32_t state) {
  if (keymap.isModifier(key, group)) return std::nullopt;
  const std::uint32_t flags = keymap.modifiers().flagsOf(state);
  platform::NSEvent event;
  event.type = platform::NSEventType::KeyDown;
  event.keyCode = keymap.codeOf(key, group);
  const bool shift = (flags & NSEventModifierFlags::Shift) != 0;
  if (!keymap.modifiers().hasOthers(state)) {
    event.charactersIgnoringModifiers = nameOf(keymap, key, group, shift);
  }
  event.modifierFlags = flags;
  const std::string text = keymap.textOf(key, group, shift).value_or("");
  if (keymap.isOnKeypad(key, group) || isArrowText(text)) {
    event.modifierFlags |= NSEventModifierFlags::NumericPad;
  }
  if (isFunctionText(text)) event.modifierFlags |= NSEventModifierFlags::Function;
  return event;
}

}  // namespace linux_desktop
