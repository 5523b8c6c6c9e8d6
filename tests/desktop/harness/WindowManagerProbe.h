#pragma once

#include "desktop/harness/XConnection.h"

namespace harness {

/// True once the window manager has taken a window of ours, which is gone again when this returns;
/// false when none has after kPatience. Its properties on the root are no proof: openbox sets
/// them before it takes requests, and loses one that comes in between.
[[nodiscard]] bool windowManagerTakesWindows(const XConnection& x);

}  // namespace harness
