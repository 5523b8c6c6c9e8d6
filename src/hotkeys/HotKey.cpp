#include "hotkeys/HotKey.h"

#include <utility>

#include "hotkeys/HotKeysController.h"

namespace hotkeys {

std::shared_ptr<HotKey> HotKey::make(KeyCombo keyCombo, Handler keyDown, Handler keyUp,
                                     std::string purpose) {
  std::shared_ptr<HotKey> hotKey(
      new HotKey(keyCombo, std::move(keyDown), std::move(keyUp), std::move(purpose)));
  HotKeysController::registerHotKey(hotKey);
  return hotKey;
}

std::shared_ptr<HotKey> HotKey::make(std::uint32_t carbonKeyCode, std::uint32_t carbonModifiers,
                                     Handler keyDown, Handler keyUp) {
  return make(KeyCombo(carbonKeyCode, carbonModifiers), std::move(keyDown), std::move(keyUp));
}

std::shared_ptr<HotKey> HotKey::make(Key key, ModifierFlags modifiers, Handler keyDown,
                                     Handler keyUp) {
  return make(KeyCombo(key, modifiers), std::move(keyDown), std::move(keyUp));
}

HotKey::HotKey(KeyCombo keyCombo, Handler keyDown, Handler keyUp, std::string purpose)
    : keyDownHandler(std::move(keyDown)),
      keyUpHandler(std::move(keyUp)),
      keyCombo_(keyCombo),
      purpose_(std::move(purpose)) {}

HotKey::~HotKey() {
  HotKeysController::unregisterHotKey(*this);
}

void HotKey::setPaused(bool paused) {
  paused_ = paused;
  if (paused_)
    HotKeysController::unregisterHotKey(*this);
  else
    HotKeysController::registerHotKey(shared_from_this());
}

}  // namespace hotkeys
