#pragma once

#include <optional>

#include "desktop/harness/XDesk.h"

namespace harness {

/// Whether a notification daemon keeps its peace, as its desktop's own tools tell it; none where
/// nobody has ever set it, or they cannot tell.
[[nodiscard]] std::optional<bool> doNotDisturb(const XDesk& desk, NotificationDaemon kind);

}  // namespace harness
