#pragma once

#include <optional>
#include <string>

#include "platform/foundation/Value.h"

namespace platform {

/// What the platform prints of a notification's user info: "nil", or
/// `Optional([AnyHashable("count"): 2, AnyHashable("name"): "x"])`, sorted by key.
[[nodiscard]] std::string userInfoText(const std::optional<Dictionary>& userInfo);

}  // namespace platform
