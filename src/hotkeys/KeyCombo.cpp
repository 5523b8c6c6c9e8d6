#include "hotkeys/KeyCombo.h"

#include <utility>

namespace hotkeys {
namespace {

constexpr std::string_view kKeyCode = "keyCode";
constexpr std::string_view kModifiers = "modifiers";

std::optional<std::uint32_t> number(const platform::Dictionary& dictionary, std::string_view key) {
  const auto value = platform::valueOf<std::int64_t>(dictionary, key);
  if (!value || !std::in_range<std::uint32_t>(*value)) return std::nullopt;
  return static_cast<std::uint32_t>(*value);
}

}  // namespace

KeyCombo::KeyCombo(Key key, ModifierFlags modifiers)
    : carbonKeyCode(hotkeys::carbonKeyCode(key)),
      carbonModifiers(carbonModifiersFromFlags(modifiers)) {}

KeyCombo::KeyCombo(std::string_view keyName, ModifierFlags modifiers)
    : KeyCombo(keyFromName(keyName).value_or(Key::A), modifiers) {}

std::optional<KeyCombo> KeyCombo::fromDictionary(const platform::Dictionary& dictionary) {
  const auto keyCode = number(dictionary, kKeyCode);
  const auto modifiers = number(dictionary, kModifiers);
  if (!keyCode || !modifiers) return std::nullopt;
  return KeyCombo(*keyCode, *modifiers);
}

void KeyCombo::setKey(std::optional<Key> key) {
  carbonKeyCode = key ? hotkeys::carbonKeyCode(*key) : 0;
}

void KeyCombo::setModifiers(ModifierFlags modifiers) {
  carbonModifiers = carbonModifiersFromFlags(modifiers);
}

std::string KeyCombo::description() const {
  std::string text = hotkeys::description(modifiers());
  if (const auto known = key()) text += hotkeys::description(*known);
  return text;
}

platform::Dictionary KeyCombo::dictionary() const {
  return {{std::string(kKeyCode), std::int64_t{carbonKeyCode}},
          {std::string(kModifiers), std::int64_t{carbonModifiers}}};
}

}  // namespace hotkeys
