#include "desktop/linux/sway/SwayChord.h"

#include <QByteArrayList>

#include "desktop/linux/keys/KeyTable.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

constexpr ModifierNames kModifiers{"ctrl+", "mod1+", "shift+", "mod4+"};

/// Puts the modifiers into `chord`, and returns what is none.
QByteArray takeModifiers(const QByteArray& combination, SwayChord& chord) {
  QByteArray key;
  for (const QByteArray& part : combination.split('+')) {
    if (const auto modifier = modifierNamed(part.toStdString())) {
      chord.modifiers |= *modifier;
    } else {
      key = part;
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
  return QByteArray::fromStdString(modifierText(modifiers, kModifiers)) + QByteArray::number(key);
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
