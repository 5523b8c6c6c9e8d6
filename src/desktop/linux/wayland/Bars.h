#pragma once

#include <vector>

#include "desktop/linux/wayland/LayerSurface.h"
#include "desktop/linux/wayland/WaylandOutputs.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

/// What bars keep free of windows at the edges of the outputs, in points of the whole desktop; the
/// outputs in their order, and of each the upper edge first. All that lie at one edge are one. KWin
/// tells only which outputs have any: these have one at the top there, that keeps nothing free.
/// `shell` is there. Asks the compositor, for half a second at most.
[[nodiscard]] std::vector<DesktopPanel> barsOn(const LayerShell& shell,
                                               const WaylandOutputs& outputs);

}  // namespace linux_desktop
