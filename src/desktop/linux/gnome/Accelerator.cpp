#include "desktop/linux/gnome/Accelerator.h"

#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <utility>

#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/keys/KeyTable.h"

namespace linux_desktop {
namespace {

constexpr ModifierNames kModifiers{"<control>", "<alt>", "<shift>", "<super>"};

/// Who takes keys before programs get them.
constexpr const char* kSchemas[] = {
    "org.gnome.desktop.wm.keybindings",
    "org.gnome.shell.keybindings",
    "org.gnome.mutter.keybindings",
    "org.gnome.mutter.wayland.keybindings",
    kMediaKeys,
};

/// Two of these that are equal are one combination.
using Chord = std::pair<std::uint32_t, xkb_keysym_t>;

Chord chordOf(std::string_view accelerator) {
  std::uint32_t modifiers = 0;
  while (accelerator.starts_with('<')) {
    const auto end = accelerator.find('>');
    if (end == std::string_view::npos) break;
    modifiers |= modifierNamed(accelerator.substr(1, end - 1)).value_or(kOtherModifier);
    accelerator.remove_prefix(end + 1);
  }
  const xkb_keysym_t keysym =
      xkb_keysym_from_name(std::string(accelerator).c_str(), XKB_KEYSYM_CASE_INSENSITIVE);
  return {modifiers, xkb_keysym_to_lower(keysym)};
}

bool holds(const GuardedSettings& settings, const std::string& key, const Chord& chord) {
  const auto accelerators = settings.list(key);
  return accelerators && key != kOwnBindings &&
         std::ranges::find(*accelerators, chord, &chordOf) != accelerators->end();
}

std::optional<std::string> holderOfUsersOwn(const GuardedSettings& mediaKeys, const Chord& chord) {
  for (const std::string& path :
       mediaKeys.list(kOwnBindings).value_or(std::vector<std::string>())) {
    const auto own = GuardedSettings::open(kOwnBinding, {"binding"}, path);
    if (own && chordOf(own->text("binding").value_or("")) == chord) return path;
  }
  return std::nullopt;
}

}  // namespace

std::string acceleratorOf(std::uint32_t keyCode, std::uint32_t modifiers) {
  const std::string key = combinationName(keyCode, 0);
  if (xkb_keysym_from_name(key.c_str(), XKB_KEYSYM_NO_FLAGS) == XKB_KEY_NoSymbol) return {};
  return modifierText(modifiers, kModifiers) + key;
}

std::optional<std::string> holderOfAccelerator(std::string_view accelerator) {
  const Chord chord = chordOf(accelerator);
  for (const std::string schema : kSchemas) {
    const auto keys = GuardedSettings::keysOf(schema);
    const auto settings = GuardedSettings::open(schema, keys);
    if (!settings) continue;
    const auto holder = std::ranges::find_if(
        keys, [&](const std::string& key) { return holds(*settings, key, chord); });
    if (holder != keys.end()) return schema + ' ' + *holder;
    if (schema != kMediaKeys) continue;
    if (auto own = holderOfUsersOwn(*settings, chord)) return own;
  }
  return std::nullopt;
}

}  // namespace linux_desktop
