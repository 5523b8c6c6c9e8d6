#pragma once

#include <vector>

#include "desktop/linux/ui/PopoverPlacement.h"
#include "desktop/linux/x11/XServer.h"

namespace linux_desktop {

/// The desktop's panels as their windows say, in pixels of the root window: what is a dock or keeps
/// a part of the screen free. Three round trips and one more for each panel.
[[nodiscard]] std::vector<DesktopPanel> panelsOn(XServer& server);

}  // namespace linux_desktop
