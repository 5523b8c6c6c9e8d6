#pragma once

#include <string>
#include <string_view>

namespace presentation {

/// The script that opens the Focus menu, clicks its Do Not Disturb checkbox unless that is in the
/// wanted state ("1" or "0") already, and closes the menu with Escape.
[[nodiscard]] std::string focusScript(std::string_view wantedState);

}  // namespace presentation
