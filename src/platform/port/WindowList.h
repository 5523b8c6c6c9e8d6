#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/foundation/Value.h"

namespace platform::port {

/// A picture that was captured. The desktop keeps the pixels; whoever shows it hands it back.
class Capture {
 public:
  virtual ~Capture() = default;
  [[nodiscard]] virtual std::size_t pixelWidth() const = 0;
  [[nodiscard]] virtual std::size_t pixelHeight() const = 0;
};

/// The windows on the screen and what they show. Main thread only; bounded by half a second.
class WindowList {
 public:
  virtual ~WindowList() = default;

  /// Front to back, a dictionary each: "kCGWindowOwnerName" and "kCGWindowName" (strings, where
  /// known) and "kCGWindowNumber" (integer). Every desktop lists one window for each screen's
  /// desktop picture, in the order of the screens, with the owner "Dock" and a name that begins
  /// with "Desktop Picture". None when the list cannot be had.
  [[nodiscard]] virtual std::optional<std::vector<Dictionary>> windowsOnScreen() const = 0;

  /// What that window shows, by itself, at the screen's own resolution. Null when it cannot be had.
  [[nodiscard]] virtual std::shared_ptr<const Capture> capture(std::uint32_t windowNumber) = 0;
};

}  // namespace platform::port
