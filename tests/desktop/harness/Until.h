#pragma once

#include <chrono>
#include <functional>

#include "desktop/harness/Process.h"

namespace harness {

/// Waits until `fact` holds, for facts that announce themselves to nobody; false when it still does
/// not after `patience`. `meanwhile` runs between two looks: give a turn of the event loop where
/// the fact needs one.
bool until(const std::function<bool()>& fact, std::chrono::milliseconds patience = kPatience,
           const std::function<void()>& meanwhile = {});

}  // namespace harness
