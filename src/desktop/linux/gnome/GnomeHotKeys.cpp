#include "desktop/linux/gnome/GnomeHotKeys.h"

#include <algorithm>
#include <utility>

#include "desktop/linux/gnome/Accelerator.h"
#include "desktop/linux/log/Log.h"
#include "platform/carbon/CarbonEvents.h"

namespace linux_desktop {
namespace {

using platform::port::HotKeyNumber;

const QString kInterface = QStringLiteral("Keys");
const QString kRelease = QStringLiteral("Release");

}  // namespace

GnomeHotKeys::GnomeHotKeys(GnomeShell& shell) : shell_(shell) {
  presses_ =
      GnomeShell::listen(kInterface, QStringLiteral("Pressed"),
                         [this](const QVariantList& values) { pressed(values.value(0).toUInt()); });
  QObject::connect(&shell_, &GnomeShell::ready, &context_, [this] {
    for (HotKey& hotKey : hotKeys_) grab(hotKey);
  });
  QObject::connect(&shell_, &GnomeShell::turnedOff, &context_, [this] { handOver(); });
}

void GnomeHotKeys::setOthers(std::function<HotKeys*()> others) {
  others_ = std::move(others);
  if (shell_.isOff()) handOver();
}

void GnomeHotKeys::setClient(platform::port::HotKeysClient* client) {
  client_ = client;
  if (instead_ != nullptr) instead_->setClient(client);
}

void GnomeHotKeys::handOver() {
  if (instead_ != nullptr) return;
  instead_ = others_ ? others_() : nullptr;
  if (instead_ == nullptr) {
    qCWarning(lcKeys, "shortcuts do not fire until GNOME Shell's extension is turned on");
    return;
  }
  instead_->setClient(client_);
  for (const HotKey& hotKey : std::exchange(hotKeys_, {})) {
    const auto status =
        instead_->registerHotKey(hotKey.number, hotKey.keyCode, hotKey.modifiers, hotKey.purpose);
    if (status != platform::noErr && client_ != nullptr)
      client_->hotKeyAssigned(hotKey.number, std::nullopt);
  }
}

platform::OSStatus GnomeHotKeys::registerHotKey(HotKeyNumber number, std::uint32_t keyCode,
                                                std::uint32_t modifiers,
                                                const std::string& purpose) {
  if (instead_ != nullptr) return instead_->registerHotKey(number, keyCode, modifiers, purpose);
  const std::string accelerator = acceleratorOf(keyCode, modifiers);
  if (accelerator.empty()) return platform::eventHotKeyInvalidErr;
  if (std::ranges::find(hotKeys_, accelerator, &HotKey::accelerator) != hotKeys_.end())
    return platform::eventHotKeyExistsErr;
  hotKeys_.push_back({number, keyCode, modifiers, purpose, accelerator});
  if (shell_.isReady()) grab(hotKeys_.back());
  return platform::noErr;
}

void GnomeHotKeys::unregisterHotKey(HotKeyNumber number) {
  if (instead_ != nullptr) return instead_->unregisterHotKey(number);
  const auto found = std::ranges::find(hotKeys_, number, &HotKey::number);
  if (found == hotKeys_.end()) return;
  if (found->key != 0) shell_.send(kInterface, kRelease, {found->key});
  hotKeys_.erase(found);
}

void GnomeHotKeys::grab(HotKey& hotKey) {
  hotKey.key = 0;
  shell_.ask(kInterface, QStringLiteral("Grab"), {QString::fromStdString(hotKey.accelerator)},
             &context_, [this, number = hotKey.number](const QDBusMessage& answer) {
               if (isError(answer)) {
                 qCWarning(lcKeys, "GNOME Shell takes no key: %s", reasonOf(answer).c_str());
               } else {
                 grabbed(number, answer.arguments().value(0).toUInt());
               }
             });
}

void GnomeHotKeys::grabbed(HotKeyNumber number, Key key) {
  const auto found = std::ranges::find(hotKeys_, number, &HotKey::number);
  if (found == hotKeys_.end()) {
    if (key != 0) shell_.send(kInterface, kRelease, {key});
  } else if (key != 0) {
    found->key = key;
  } else {
    hotKeys_.erase(found);
    if (client_ != nullptr) client_->hotKeyAssigned(number, std::nullopt);
  }
}

// When the key is let go the shell does not say.
void GnomeHotKeys::pressed(Key key) {
  const auto found = std::ranges::find(hotKeys_, key, &HotKey::key);
  if (found == hotKeys_.end() || client_ == nullptr) return;
  const HotKeyNumber number = found->number;
  client_->hotKeyPressed(number);
  if (client_ != nullptr) client_->hotKeyReleased(number);
}

}  // namespace linux_desktop
