#include "desktop/linux/sway/SwayChord.h"

#include <QByteArrayList>
#include <algorithm>
#include <iterator>

#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

struct ModifierRow {
  /// As sway reads it, in small letters; the first of a modifier is the one that we write.
  const char* name;
  std::uint32_t bit;
};
constexpr std::uint32_t kNoModifierOfOurs = 1U << 31U;
constexpr ModifierRow kModifiers[] = {
    {"ctrl", platform::controlKey}, {"control", platform::controlKey},
    {"mod1", platform::optionKey},  {"alt", platform::optionKey},
    {"shift", platform::shiftKey},  {"mod4", platform::cmdKey},
    {"super", platform::cmdKey},    {"logo", platform::cmdKey},
    {"lock", kNoModifierOfOurs},    {"mod2", kNoModifierOfOurs},
    {"mod3", kNoModifierOfOurs},    {"mod5", kNoModifierOfOurs},
};

/// Puts the modifiers into `chord`, and returns what is none.
QByteArray takeModifiers(const QByteArray& combination, SwayChord& chord) {
  QByteArray key;
  for (const QByteArray& part : combination.split('+')) {
    const auto* row = std::ranges::find_if(
        kModifiers, [&](const ModifierRow& modifier) { return part.toLower() == modifier.name; });
    if (row == std::end(kModifiers)) {
      key = part;
    } else {
      chord.modifiers |= row->bit;
    }
  }
  return key;
}

}  // namespace

SwayChord swayChordOfSymbol(const QByteArray& combination) {
  SwayChord chord;
  const QByteArray name = takeModifiers(combination, chord);
  chord.keysym =
      xkb_keysym_to_lower(xkb_keysym_from_name(name.constData(), XKB_KEYSYM_CASE_INSENSITIVE));
  return chord;
}

SwayChord swayChordOfCode(const QByteArray& combination) {
  SwayChord chord;
  chord.key = takeModifiers(combination, chord).toUInt();
  return chord;
}

QByteArray swayCode(std::uint32_t modifiers, Keycode key) {
  QByteArray combination;
  for (const ModifierRow& row : kModifiers) {
    if ((modifiers & row.bit) == 0) continue;
    combination += QByteArray(row.name) + '+';
    modifiers &= ~row.bit;
  }
  return combination + QByteArray::number(key);
}

std::vector<SwayChord> swayChordsOfPress(const Keymap& keymap, KeyboardGroup group,
                                         std::uint32_t modifiers, Keycode key) {
  const xkb_keysym_t plain = xkb_keysym_to_lower(keymap.keysym(key, group, false));
  std::vector<SwayChord> chords{{.modifiers = modifiers, .key = key},
                                {.modifiers = modifiers, .keysym = plain}};
  // With what Shift makes of the key, sway counts Shift as used up.
  const xkb_keysym_t shifted = keymap.keysym(key, group, true);
  if ((modifiers & platform::shiftKey) != 0 && shifted == xkb_keysym_to_lower(shifted)) {
    chords.push_back(
        {.modifiers = modifiers & ~std::uint32_t{platform::shiftKey}, .keysym = shifted});
  }
  return chords;
}

}  // namespace linux_desktop
