#include "desktop/linux/sway/SwayHotKeys.h"

#include <xkbcommon/xkbcommon.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "desktop/linux/keys/KeyTable.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/sway/SwayConfig.h"
#include "platform/carbon/CarbonEvents.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

using platform::port::HotKeyNumber;

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

/// A combination as sway tells two of them apart.
struct Chord {
  std::uint32_t modifiers = 0;
  xkb_keysym_t keysym = XKB_KEY_NoSymbol;
  bool operator==(const Chord&) const = default;
};

Chord chordOf(const QByteArray& combination) {
  Chord chord;
  for (const QByteArray& part : combination.split('+')) {
    const auto* row = std::ranges::find_if(
        kModifiers, [&](const ModifierRow& modifier) { return part.toLower() == modifier.name; });
    if (row != std::end(kModifiers)) {
      chord.modifiers |= row->bit;
    } else {
      chord.keysym =
          xkb_keysym_to_lower(xkb_keysym_from_name(part.constData(), XKB_KEYSYM_CASE_INSENSITIVE));
    }
  }
  return chord;
}

QByteArray modifierPart(std::uint32_t modifiers) {
  QByteArray part;
  for (const ModifierRow& row : kModifiers) {
    if ((modifiers & row.bit) == 0) continue;
    part += QByteArray(row.name) + '+';
    modifiers &= ~row.bit;
  }
  return part;
}

/// One for each name that the key has on some keyboard.
QByteArrayList combinationsOf(std::uint32_t keyCode, std::uint32_t modifiers) {
  QByteArrayList combinations;
  for (const KeyRow& row : keyTable()) {
    std::array<char, 64> name{};
    if (row.code != keyCode) continue;
    if (xkb_keysym_get_name(row.keysym, name.data(), name.size()) < 0) continue;
    combinations += modifierPart(modifiers) + name.data();
  }
  return combinations;
}

bool haveCommon(const QByteArrayList& some, const QByteArrayList& others) {
  return std::ranges::any_of(some, [&](const QByteArray& one) {
    return std::ranges::find(others, chordOf(one), &chordOf) != others.end();
  });
}

const QByteArray kReleased = QByteArrayLiteral(" released");

/// What tells our bindings from those of a process before, which sway keeps if that was killed.
QByteArray bindingPrefix() {
  return "nop calmdeck " + QByteArray::number(QCoreApplication::applicationPid()) + ' ';
}

bool succeeded(const QJsonDocument& results) {
  const QJsonArray all = results.array();
  return !all.isEmpty() && std::ranges::all_of(all, [](const QJsonValue& result) {
    return result[QLatin1String("success")].toBool();
  });
}

}  // namespace

SwayHotKeys::SwayHotKeys(SwaySocket& sway) : sway_(sway) {
  sway_.listen(SwaySocket::Event::Binding, [this](const QJsonObject& event) { reported(event); });
  sway_.listen(SwaySocket::Event::Workspace, [this](const QJsonObject& event) {
    if (event[QLatin1String("change")].toString() == QLatin1String("reload")) bindAnew();
  });
}

SwayHotKeys::~SwayHotKeys() {
  for (const HotKey& hotKey : hotKeys_) unbind(hotKey);
}

platform::OSStatus SwayHotKeys::registerHotKey(HotKeyNumber number, std::uint32_t keyCode,
                                               std::uint32_t modifiers) {
  const HotKey hotKey{number, combinationsOf(keyCode, modifiers)};
  if (hotKey.combinations.isEmpty()) return platform::eventHotKeyInvalidErr;
  if (isOurs(hotKey) || isTheUsers(hotKey)) return platform::eventHotKeyExistsErr;
  if (!bind(hotKey)) {
    unbind(hotKey);
    qCWarning(lcKeys, "%s: sway does not bind it", combinationName(keyCode, modifiers).c_str());
    return platform::eventHotKeyInvalidErr;
  }
  hotKeys_.push_back(hotKey);
  return platform::noErr;
}

void SwayHotKeys::unregisterHotKey(HotKeyNumber number) {
  const auto found = std::ranges::find(hotKeys_, number, &HotKey::number);
  if (found == hotKeys_.end()) return;
  unbind(*found);
  hotKeys_.erase(found);
}

bool SwayHotKeys::isOurs(const HotKey& hotKey) const {
  return std::ranges::any_of(hotKeys_, [&](const HotKey& other) {
    return haveCommon(hotKey.combinations, other.combinations);
  });
}

// Sway itself does not say: it would put ours in the place of the user's.
bool SwayHotKeys::isTheUsers(const HotKey& hotKey) {
  return haveCommon(hotKey.combinations, SwayConfig::read(sway_).bound("bindsym"));
}

bool SwayHotKeys::bind(const HotKey& hotKey) {
  const QByteArray command = bindingPrefix() + QByteArray::number(hotKey.number);
  QByteArrayList commands;
  for (const QByteArray& combination : hotKey.combinations) {
    commands += "bindsym --no-warn --no-repeat --to-code " + combination + ' ' + command;
    commands += "bindsym --no-warn --release --to-code " + combination + ' ' + command + kReleased;
  }
  return succeeded(sway_.call(SwaySocket::Question::Command, commands.join(';')));
}

void SwayHotKeys::unbind(const HotKey& hotKey) {
  QByteArrayList commands;
  for (const QByteArray& combination : hotKey.combinations) {
    commands += "unbindsym --to-code " + combination;
    commands += "unbindsym --release --to-code " + combination;
  }
  sway_.command(commands.join(';'));
}

// What was bound before the reload is gone with it.
void SwayHotKeys::bindAnew() {
  for (const HotKey& hotKey : hotKeys_) {
    if (!isTheUsers(hotKey) && bind(hotKey)) continue;
    qCWarning(lcKeys, "%s: sway's configuration has it now",
              hotKey.combinations.front().constData());
  }
}

void SwayHotKeys::reported(const QJsonObject& event) {
  QByteArray command =
      event[QLatin1String("binding")][QLatin1String("command")].toString().toUtf8();
  if (!command.startsWith(bindingPrefix())) return;
  command.remove(0, bindingPrefix().size());
  const bool isRelease = command.endsWith(kReleased);
  if (isRelease) command.chop(kReleased.size());
  const HotKeyNumber number = command.toUInt();
  const auto found = std::ranges::find(hotKeys_, number, &HotKey::number);
  if (found == hotKeys_.end() || client_ == nullptr) return;
  if (isRelease) {
    client_->hotKeyReleased(number);
  } else {
    client_->hotKeyPressed(number);
  }
}

}  // namespace linux_desktop
