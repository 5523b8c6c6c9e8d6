#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/SmallValues.h"

namespace platform::port {

/// Names one registered hot key, to the desktop as to its owner: the `id` of its EventHotKeyID.
/// Chosen by the owner, never 0 and never used twice in a process.
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
  /// Only from a desktop that assigns the keys itself: what came of a number that it accepted. The
  /// name by which users there read the keys that it has now, which may be others than were asked
  /// for; told again when they change. None: it gets no keys, and is no longer registered.
  virtual void hotKeyAssigned(HotKeyNumber /*number*/, const std::optional<std::string>& /*keys*/) {
  }
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
  /// Takes the combination for this program; where the desktop assigns the keys itself, noErr says
  /// only that it was asked, and `hotKeyAssigned` tells its answer, however late. Any status but
  /// noErr is a refusal that leaves nothing half taken: eventHotKeyExistsErr when another program
  /// or an earlier number holds it, eventHotKeyInvalidErr when this keyboard cannot make it or this
  /// desktop keeps it for itself. `purpose`, in the user's language, is for desktops that list the
  /// keys of programs; empty: they name the keys.
  [[nodiscard]] virtual OSStatus registerHotKey(HotKeyNumber number, std::uint32_t keyCode,
                                                std::uint32_t modifiers,
                                                const std::string& purpose) = 0;
  /// Gives it back; nothing is reported of it any more. An unknown number: does nothing.
  virtual void unregisterHotKey(HotKeyNumber number) = 0;
  /// Whether this desktop gives the combination to nobody, whatever is held at the moment: to
  /// register it is eventHotKeyInvalidErr.
  [[nodiscard]] virtual bool isReserved(std::uint32_t /*keyCode*/,
                                        std::uint32_t /*modifiers*/) const {
    return false;
  }
};

/// How a user binds keys himself, in the desktop's own configuration, where no program gets any.
class OwnKeyBindings {
 public:
  virtual ~OwnKeyBindings() = default;
  /// What to write there so that the combination does one of the program's actions
  /// (SessionClient::applicationShouldPerform).
  [[nodiscard]] virtual std::string bindingOf(std::uint32_t keyCode, std::uint32_t modifiers,
                                              std::string_view action) const = 0;
};

}  // namespace platform::port
