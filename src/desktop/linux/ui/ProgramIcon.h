#pragma once

#include <QIcon>

namespace linux_desktop {

/// The program's own icon, for windows; null where its resources do not have it.
[[nodiscard]] QIcon programIcon();

}  // namespace linux_desktop
