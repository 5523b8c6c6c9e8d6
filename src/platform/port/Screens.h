#pragma once

#include <string>
#include <vector>

#include "platform/foundation/Geometry.h"

namespace platform::port {

/// Names a screen for as long as it is connected; the same screen gets the same id when it comes
/// back.
using ScreenId = std::string;

struct ScreenInfo {
  ScreenId id;
  /// In points; y up from the bottom of the first screen.
  NSRect frame;
  /// Pixels of the screen for each point.
  double backingScaleFactor = 1;

  bool operator==(const ScreenInfo&) const = default;
};

class ScreensClient {
 public:
  virtual ~ScreensClient() = default;
  /// Screens came, went, or changed their size, place or order. Once for each change that a user
  /// would call one; `screens` already tells the new state.
  virtual void screenParametersDidChange() = 0;
};

/// The screens of the machine. Reads are answered from memory. Main thread only.
class Screens {
 public:
  virtual ~Screens() = default;
  /// Null: nobody is told. The client outlives its being set.
  virtual void setClient(ScreensClient* client) = 0;
  /// The primary one first. Never empty while the desktop lives.
  [[nodiscard]] virtual std::vector<ScreenInfo> screens() const = 0;
};

}  // namespace platform::port
