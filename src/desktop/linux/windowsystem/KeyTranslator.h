#pragma once

#include <QKeyEvent>
#include <optional>

#include "platform/appkit/NSEvent.h"

namespace linux_desktop {

/// Turns key presses of our own windows into the platform's, by the keyboard layout that is in use.
class KeyTranslator {
 public:
  virtual ~KeyTranslator() = default;
  /// The KeyDown event of a press; none for a modifier key alone. Without characters when no hot
  /// key can stand for the press: the key has no character that names it, or a modifier is held
  /// that is none of the four.
  [[nodiscard]] virtual std::optional<platform::NSEvent> translate(const QKeyEvent& press) = 0;
};

}  // namespace linux_desktop
