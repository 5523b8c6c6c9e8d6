#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/foundation/Geometry.h"

namespace platform {

/// Kinds of events, with the platform's numbers.
enum class NSEventType : std::uint32_t {
  LeftMouseDown = 1,
  LeftMouseUp = 2,
  RightMouseDown = 3,
  RightMouseUp = 4,
  KeyDown = 10,
};

/// A set of event kinds: bit n stands for the kind with number n.
using NSEventMask = std::uint64_t;

[[nodiscard]] constexpr NSEventMask maskOf(NSEventType type) {
  return NSEventMask{1} << static_cast<std::uint32_t>(type);
}

/// The bits of `NSEvent::modifierFlags`, with the platform's values. Option is Alt and Command is
/// Super on the keyboards of other systems.
struct NSEventModifierFlags {
  static constexpr std::uint32_t CapsLock = 0x10000;
  static constexpr std::uint32_t Shift = 0x20000;
  static constexpr std::uint32_t Control = 0x40000;
  static constexpr std::uint32_t Option = 0x80000;
  static constexpr std::uint32_t Command = 0x100000;
  static constexpr std::uint32_t NumericPad = 0x200000;
  static constexpr std::uint32_t Function = 0x800000;
  /// The four that make a shortcut of a key.
  static constexpr std::uint32_t OfShortcuts = Shift | Control | Option | Command;
};

/// Something that the user did. A value.
struct NSEvent {
  NSEventType type = NSEventType::LeftMouseUp;
  /// Where the pointer was, in the coordinates of the window; the origin where that is not known.
  NSPoint locationInWindow;

  // --- Key events only ---
  /// The platform's virtual key code: names the key by the character that it has on the user's own
  /// layout (see `carbon/KeyCodes.h`); 0xffff for a key that the platform has no code for.
  std::uint16_t keyCode = 0;
  /// The modifier keys that are held; see NSEventModifierFlags.
  std::uint32_t modifierFlags = 0;
  /// What the key gives with Shift applied but without the other modifiers, UTF-8; on a layout
  /// whose characters are not Latin, the Latin character of the same key. Absent for a key that
  /// gives no character, a dead key for instance.
  std::optional<std::string> charactersIgnoringModifiers = std::nullopt;
};

}  // namespace platform
