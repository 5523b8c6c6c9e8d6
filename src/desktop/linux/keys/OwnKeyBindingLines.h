#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/port/HotKeys.h"

namespace linux_desktop {

/// Lines for the configuration of the compositor that runs, told by what it sets for its programs;
/// of one that is not known, the command alone.
class OwnKeyBindingLines final : public platform::port::OwnKeyBindings {
 public:
  [[nodiscard]] std::string bindingOf(std::uint32_t keyCode, std::uint32_t modifiers,
                                      std::string_view action) const override;
};

}  // namespace linux_desktop
