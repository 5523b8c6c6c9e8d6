#pragma once

#include <string_view>

#include "platform/foundation/NSObject.h"

namespace platform {

/// Tells other programs. On a desktop without such messages nobody hears. Main thread only.
class NSDistributedNotificationCenter final : public NSObject {
 public:
  [[nodiscard]] static NSDistributedNotificationCenter& defaultCenter();
  /// Without sender or user info, and at once, also to programs that are in the background.
  void postNotificationName(std::string_view name);
};

}  // namespace platform
