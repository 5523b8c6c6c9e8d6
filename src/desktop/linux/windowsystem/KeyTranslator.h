#pragma once

#include <QKeyEvent>
#include <optional>

#include "platform/appkit/NSEvent.h"

namespace linux_desktop {

/// Turns key presses of our own windows into the platform's, by the keyboard layout that is in use.
class KeyTranslator {
 public:
  virtual ~KeyTranslator() = default;
  /// The KeyDown event of a press; none for a modifier key alone.
  [[nodiscard]] virtual std::optional<platform::NSEvent> translate(const QKeyEvent& press) = 0;
};

}  // namespace linux_desktop
