#pragma once

#include <QString>
#include <vector>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// The outputs that show something, in the order in which GTK 2 and so pcmanfm counts them from 0;
/// the primary one has no place of its own.
[[nodiscard]] std::vector<QString> outputsInUse(XServer& server);

}  // namespace linux_desktop
