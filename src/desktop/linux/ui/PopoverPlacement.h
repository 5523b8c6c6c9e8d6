#pragma once

#include <QRect>
#include <vector>

#include "desktop/linux/tray/StatusItemAnchor.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

// All rectangles are in one and the same system of coordinates, y down.

/// What is left of `monitor` beside the panels on it.
[[nodiscard]] QRect usableArea(const QRect& monitor, const std::vector<DesktopPanel>& panels);

/// Where a popover of `size` goes whose item is at `anchor`: beside the panel that holds the item,
/// centred at it as far as there is room, and inside `monitor` and off all panels. What is larger
/// than the room begins at its left and top.
[[nodiscard]] QRect placePopover(const Anchor& anchor, QSize size, const QRect& monitor,
                                 const std::vector<DesktopPanel>& panels);

}  // namespace linux_desktop
