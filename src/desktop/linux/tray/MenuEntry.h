#pragma once

#include <QString>
#include <vector>

namespace platform {
class NSMenu;
}

namespace linux_desktop {

/// What a panel draws of one menu item: a copy, since the menu itself may change or go.
struct MenuEntry {
  QString title;
  bool enabled = true;
  bool operator==(const MenuEntry&) const = default;
};

using MenuEntries = std::vector<MenuEntry>;

[[nodiscard]] MenuEntries entriesOf(const platform::NSMenu& menu);

}  // namespace linux_desktop
