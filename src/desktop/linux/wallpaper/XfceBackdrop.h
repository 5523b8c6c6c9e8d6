#pragma once

#include <QVariantMap>
#include <optional>

#include "desktop/linux/wallpaper/Backdrop.h"

namespace linux_desktop {

/// What xfdesktop makes of the properties whose names begin with `prefix` (that of one monitor and
/// workspace, with the slash). None where no picture was ever chosen: the program then has one of
/// its own that no property names.
[[nodiscard]] std::optional<Backdrop> xfceBackdrop(const QVariantMap& properties,
                                                   const QString& prefix);

}  // namespace linux_desktop
