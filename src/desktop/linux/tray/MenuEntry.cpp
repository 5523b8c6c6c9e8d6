#include "desktop/linux/tray/MenuEntry.h"

#include "platform/appkit/NSMenu.h"

namespace linux_desktop {

MenuEntries entriesOf(const platform::NSMenu& menu) {
  MenuEntries entries;
  for (const auto& item : menu.itemArray())
    entries.push_back({QString::fromStdString(item->title()), item->isEnabled()});
  return entries;
}

}  // namespace linux_desktop
