#pragma once

#include <memory>
#include <vector>

#include "platform/foundation/NSObject.h"
#include "platform/port/Screens.h"

namespace platform {

/// Posted to the default notification center when screens came, went or changed.
inline constexpr const char* NSApplicationDidChangeScreenParametersNotification =
    "NSApplicationDidChangeScreenParametersNotification";

/// A screen as it was when it was asked for; it does not follow later changes.
class NSScreen final : public NSObject {
 public:
  explicit NSScreen(port::ScreenInfo info) : info_(std::move(info)) {}

  /// All of them, in the platform's order.
  [[nodiscard]] static std::vector<std::shared_ptr<NSScreen>> screens();

  [[nodiscard]] const port::ScreenId& id() const { return info_.id; }
  /// In points.
  [[nodiscard]] const NSRect& frame() const { return info_.frame; }
  [[nodiscard]] double backingScaleFactor() const { return info_.backingScaleFactor; }

 private:
  port::ScreenInfo info_;
};

}  // namespace platform
