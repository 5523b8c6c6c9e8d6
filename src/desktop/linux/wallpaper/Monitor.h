#pragma once

#include <QRect>
#include <QString>

namespace linux_desktop {

/// A monitor as the display server has it.
struct Monitor {
  /// The connector, such as "HDMI-1"; desktops keep their settings under it.
  QString name;
  /// In device pixels of the whole desktop, y down.
  QRect pixels;
  bool operator==(const Monitor&) const = default;
};

}  // namespace linux_desktop
