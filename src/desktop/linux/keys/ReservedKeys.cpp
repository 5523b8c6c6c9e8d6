#include "desktop/linux/keys/ReservedKeys.h"

#include <algorithm>
#include <iterator>

#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

constexpr std::uint16_t kEditingKeys[] = {
    platform::kVK_ANSI_A,  // select all
    platform::kVK_ANSI_C,  // copy
    platform::kVK_ANSI_F,  // find
    platform::kVK_ANSI_S,  // save
    platform::kVK_ANSI_V,  // paste
    platform::kVK_ANSI_X,  // cut
    platform::kVK_ANSI_Y,  // redo
    platform::kVK_ANSI_Z,  // undo
    platform::kVK_Delete,  // a word back
    platform::kVK_ForwardDelete,
    platform::kVK_LeftArrow,  // a word on
    platform::kVK_RightArrow,
    platform::kVK_Home,  // to the ends of the text
    platform::kVK_End,
};

}  // namespace

bool isReservedForPrograms(std::uint32_t keyCode, std::uint32_t modifiers) {
  if (modifiers == 0) return true;
  return modifiers == platform::controlKey &&
         std::ranges::find(kEditingKeys, keyCode) != std::end(kEditingKeys);
}

}  // namespace linux_desktop
