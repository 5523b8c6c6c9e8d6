#pragma once

#include <cstdint>

#include "platform/foundation/OSStatus.h"

namespace platform::port {

/// Names one registered hot key between the layer and the desktop. Chosen by the layer, never 0 and
/// never used twice in a process.
using HotKeyNumber = std::uint32_t;

/// What the desktop reports of hot keys, on the main thread and never from inside a call.
class HotKeysClient {
 public:
  virtual ~HotKeysClient() = default;
  /// Once for each press, however long the key is held, whichever program has the keyboard and
  /// whatever lock keys are on.
  virtual void hotKeyPressed(HotKeyNumber number) = 0;
  /// Once for each press, when the key is let go.
  virtual void hotKeyReleased(HotKeyNumber number) = 0;
};

/// Key combinations that reach this program wherever the user is.
///
/// Virtual key codes and modifier masks are those of the platform (see `carbon/KeyCodes.h`): a
/// letter's code stands for the letter on the user's own layout, not for a place on the keyboard.
class HotKeys {
 public:
  virtual ~HotKeys() = default;

  /// `client` is told from now on; null: nobody is. It must outlive its being set.
  virtual void setClient(HotKeysClient* client) = 0;
  /// Takes the combination for this program. Any status but noErr is a refusal that leaves nothing
  /// half taken: eventHotKeyExistsErr when another program or an earlier number holds it,
  /// eventHotKeyInvalidErr when this keyboard cannot make it or this desktop keeps it for itself.
  [[nodiscard]] virtual OSStatus registerHotKey(HotKeyNumber number, std::uint32_t keyCode,
                                                std::uint32_t modifiers) = 0;
  /// Gives it back; nothing is reported of it any more. An unknown number: does nothing.
  virtual void unregisterHotKey(HotKeyNumber number) = 0;
  /// Whether this desktop gives the combination to nobody, whatever is held at the moment: to
  /// register it is eventHotKeyInvalidErr.
  [[nodiscard]] virtual bool isReserved(std::uint32_t /*keyCode*/,
                                        std::uint32_t /*modifiers*/) const {
    return false;
  }
};

}  // namespace platform::port
