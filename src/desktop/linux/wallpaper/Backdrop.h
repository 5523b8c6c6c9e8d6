#pragma once

#include <QColor>
#include <QString>

namespace linux_desktop {

/// How a picture is laid out. Each desktop has its own names for these.
enum class BackdropStyle {
  None,       ///< colours only
  Centered,   ///< at its own size, in the middle of each monitor
  Tiled,      ///< repeated from each monitor's upper left corner
  Stretched,  ///< to the monitor's size, whatever its proportions
  Fitted,     ///< as large as fits, proportions kept; the colours show beside it
  Zoomed,     ///< as small as covers the monitor, proportions kept; the rest is cut off
};

enum class BackdropShading { Solid, Horizontal, Vertical };

/// What a desktop has been told to show behind everything on one monitor.
struct Backdrop {
  /// Absolute; empty where there is no picture.
  QString file;
  BackdropStyle style = BackdropStyle::None;
  /// Laid out over all monitors as if they were one, and this monitor shows its part.
  bool spansMonitors = false;
  BackdropShading shading = BackdropShading::Solid;
  QColor primary = Qt::black;
  /// Where the shading ends.
  QColor secondary = Qt::black;

  bool operator==(const Backdrop&) const = default;
};

}  // namespace linux_desktop
