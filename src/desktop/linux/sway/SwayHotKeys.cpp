#include "desktop/linux/sway/SwayHotKeys.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <algorithm>
#include <utility>

#include "desktop/linux/keys/KeyTable.h"
#include "desktop/linux/log/Log.h"
#include "platform/carbon/CarbonEvents.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

using platform::port::HotKeyNumber;

const QByteArray kReleased = QByteArrayLiteral(" released");

/// What tells our bindings from those of a process before, which sway keeps if that was killed.
QByteArray bindingPrefix() {
  return "nop calmdeck " + QByteArray::number(QCoreApplication::applicationPid()) + ' ';
}

bool succeeded(const std::optional<QJsonDocument>& results) {
  if (!results) return true;
  const QJsonArray all = results->array();
  return !all.isEmpty() && std::ranges::all_of(all, [](const QJsonValue& result) {
    return result[QLatin1String("success")].toBool();
  });
}

template <class T>
bool haveCommon(const std::vector<T>& some, const std::vector<T>& others) {
  return std::ranges::find_first_of(some, others) != some.end();
}

}  // namespace

SwayHotKeys::SwayHotKeys(SwaySocket& sway) : sway_(sway) {
  sway_.listen(SwaySocket::Event::Binding, [this](const QJsonObject& event) { reported(event); });
  sway_.listen(SwaySocket::Event::Workspace, [this](const QJsonObject& event) {
    if (event[QLatin1String("change")].toString() == QLatin1String("reload")) bindAnew();
  });
  sway_.listen(SwaySocket::Event::Input, [this](const QJsonObject& event) {
    if (event[QLatin1String("change")].toString() != QLatin1String("xkb_layout")) return;
    takeLayout(event[QLatin1String("input")].toObject());
    adapt();
  });
}

SwayHotKeys::~SwayHotKeys() {
  for (const HotKey& hotKey : hotKeys_) unbind(hotKey);
}

void SwayHotKeys::setKeymap(std::function<const Keymap*()> keymap) {
  keymap_ = std::move(keymap);
  keymapChanged();
}

void SwayHotKeys::keymapChanged() {
  group_ = 0;
  const QJsonArray inputs = sway_.call(SwaySocket::Question::Inputs).array();
  for (const auto input : inputs) takeLayout(input.toObject());
  adapt();
}

// Each keyboard may have a layout of its own in effect: what counts is said of the one that we
// know.
void SwayHotKeys::takeLayout(const QJsonObject& input) {
  const Keymap* keymap = keymap_();
  const int index = input[QLatin1String("xkb_active_layout_index")].toInt(-1);
  if (keymap == nullptr || index < 0) return;
  const auto group = static_cast<KeyboardGroup>(index);
  const QString name = input[QLatin1String("xkb_active_layout_name")].toString();
  if (name.toStdString() == keymap->layoutName(group)) group_ = group;
}

platform::OSStatus SwayHotKeys::registerHotKey(HotKeyNumber number, std::uint32_t keyCode,
                                               std::uint32_t modifiers,
                                               const std::string& /*purpose*/) {
  HotKey hotKey{number, keyCode, modifiers};
  hotKey.keys = keysOf(hotKey);
  const std::string name = combinationName(keyCode, modifiers);
  if (hotKey.keys.empty() && keymap_() != nullptr) {
    qCWarning(lcKeys, "%s: not on this keyboard", name.c_str());
    return platform::eventHotKeyInvalidErr;
  }
  if (isOurs(hotKey) || isTheUsers(hotKey)) return platform::eventHotKeyExistsErr;
  if (!bind(hotKey)) {
    unbind(hotKey);
    qCWarning(lcKeys, "%s: sway does not bind it", name.c_str());
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

std::vector<Keycode> SwayHotKeys::keysOf(const HotKey& hotKey) const {
  const Keymap* keymap = keymap_();
  if (keymap == nullptr) return {};
  return keymap->keysOf(static_cast<std::uint16_t>(hotKey.keyCode), group_,
                        (hotKey.modifiers & platform::shiftKey) != 0);
}

bool SwayHotKeys::isOurs(const HotKey& hotKey) const {
  return std::ranges::any_of(hotKeys_, [&](const HotKey& other) {
    return other.number != hotKey.number && other.modifiers == hotKey.modifiers &&
           (other.keyCode == hotKey.keyCode || haveCommon(other.keys, hotKey.keys));
  });
}

// Sway itself does not say: it would put ours in the place of the user's.
bool SwayHotKeys::isTheUsers(const HotKey& hotKey) {
  return haveCommon(chordsOf(hotKey), SwayConfig::read(sway_).bound());
}

std::vector<SwayChord> SwayHotKeys::chordsOf(const HotKey& hotKey) const {
  std::vector<SwayChord> chords;
  for (const KeyRow& row : keyTable()) {
    if (row.code != hotKey.keyCode) continue;
    chords.push_back({.modifiers = hotKey.modifiers, .keysym = xkb_keysym_to_lower(row.keysym)});
  }
  for (const Keycode key : hotKey.keys) {
    // A name in the configuration may also stand for the key that has it in the first layout.
    for (const KeyboardGroup group : {group_, KeyboardGroup{0}}) {
      const auto pressed = swayChordsOfPress(*keymap_(), group, hotKey.modifiers, key);
      chords.insert(chords.end(), pressed.begin(), pressed.end());
    }
  }
  return chords;
}

bool SwayHotKeys::bind(const HotKey& hotKey) {
  if (hotKey.keys.empty()) return true;
  const QByteArray command = bindingPrefix() + QByteArray::number(hotKey.number);
  QByteArrayList commands;
  for (const Keycode key : hotKey.keys) {
    const QByteArray combination = swayCode(hotKey.modifiers, key);
    commands += "bindcode --no-warn --no-repeat " + combination + ' ' + command;
    commands += "bindcode --no-warn --release " + combination + ' ' + command + kReleased;
  }
  return succeeded(sway_.carryOut(commands.join(';')));
}

void SwayHotKeys::unbind(const HotKey& hotKey) {
  if (hotKey.keys.empty()) return;
  QByteArrayList commands;
  for (const Keycode key : hotKey.keys) {
    const QByteArray combination = swayCode(hotKey.modifiers, key);
    commands += "unbindcode " + combination;
    commands += "unbindcode --release " + combination;
  }
  sway_.command(commands.join(';'));
}

// A keyboard that lacks a key changes nothing: programs that type plug in such ones for a moment.
void SwayHotKeys::adapt() {
  std::vector<HotKey*> moved;
  for (HotKey& hotKey : hotKeys_) {
    const std::vector<Keycode> keys = keysOf(hotKey);
    if (keys.empty() || keys == hotKey.keys) continue;
    // They may trade places, so all let go first.
    unbind(std::exchange(hotKey, {hotKey.number, hotKey.keyCode, hotKey.modifiers}));
    moved.push_back(&hotKey);
  }
  for (HotKey* hotKey : moved) {
    hotKey->keys = keysOf(*hotKey);
    if (!isOurs(*hotKey) && !isTheUsers(*hotKey) && bind(*hotKey)) continue;
    hotKey->keys.clear();
    qCWarning(lcKeys, "%s: sway's configuration has its key in this layout",
              combinationName(hotKey->keyCode, hotKey->modifiers).c_str());
  }
}

// What was bound before the reload is gone with it.
void SwayHotKeys::bindAnew() {
  for (HotKey& hotKey : hotKeys_) {
    if (hotKey.keys.empty()) hotKey.keys = keysOf(hotKey);
    if (!isTheUsers(hotKey) && bind(hotKey)) continue;
    hotKey.keys.clear();
    qCWarning(lcKeys, "%s: sway's configuration has it now",
              combinationName(hotKey.keyCode, hotKey.modifiers).c_str());
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
