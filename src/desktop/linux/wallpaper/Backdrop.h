#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <QString>
#include <algorithm>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

namespace linux_desktop {

/// A monitor as the display server has it.
struct Monitor {
  /// The connector, such as "HDMI-1"; desktops keep their settings under it.
  QString name;
  /// Of the whole desktop, y down.
  QRect points;
  /// Device pixels for each point.
  double scale = 1;

  /// In device pixels, where it is known: a scale that is no whole number does not give it exactly.
  std::optional<QSize> resolution = std::nullopt;

  /// The same in device pixels. Where monitors are scaled differently, these may overlap.
  [[nodiscard]] QRect pixels() const {
    return {(QPointF(points.topLeft()) * scale).toPoint(),
            resolution.value_or((QSizeF(points.size()) * scale).toSize())};
  }
  bool operator==(const Monitor&) const = default;
};

/// How a picture is laid out. Each desktop has its own names for these.
enum class BackdropStyle {
  None,       ///< colours only
  Centered,   ///< at its own size, in the middle of each monitor
  Tiled,      ///< repeated from each monitor's upper left corner
  Stretched,  ///< to the monitor's size, whatever its proportions
  Fitted,     ///< as large as fits, proportions kept; the colours show beside it
  Zoomed,     ///< as small as covers the monitor, proportions kept; the rest is cut off
};

/// What a desktop calls a style.
struct BackdropStyleName {
  std::string_view name;
  BackdropStyle style = BackdropStyle::None;
  /// The picture is laid out over all monitors as if they were one.
  bool spans = false;
};
/// The row of that name; none of a picture where there is no such.
[[nodiscard]] inline BackdropStyleName styleNamed(std::string_view name,
                                                  std::span<const BackdropStyleName> table) {
  const auto row = std::ranges::find(table, name, &BackdropStyleName::name);
  return row == table.end() ? BackdropStyleName() : *row;
}

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

/// What becomes of a scaled size that is no whole number of pixels. Cut off after a calculation in
/// floating point, also a whole number can lose a pixel, and with it every pixel of the picture
/// moves.
enum class SizeRounding { Down, DownInFloat, DownInDouble, AsMutter, Nearest, Up };

/// The finer points in which one desktop draws a picture differently from another.
struct BackdropManner {
  SizeRounding rounding = SizeRounding::Down;
  /// A scaled picture is made by GL, between four pixels, of itself or, where it is more than twice
  /// as large, of its half, quarter and so on; rather than of all the pixels that one is over.
  bool scalesByGl = false;
  /// Turns a photograph upright as its EXIF orientation says.
  bool turnsUpright = false;
  /// Tiles are laid from the corner of the whole desktop rather than from each monitor's own.
  bool tilesFromDesktopOrigin = false;
  /// One tile stands in the middle of the monitor, rather than in its upper left corner.
  bool centersTiles = false;
  /// A tile is drawn as large as the monitor, and begins where it would at its own size, in that
  /// measure.
  bool stretchesTiles = false;
  /// A tile that is larger than the last monitor is cut to its size, around the middle.
  bool cutsTilesToLastMonitor = false;
  /// A spanned picture covers the whole desktop, the rest cut off, rather than fit inside.
  bool spansByZooming = true;

  bool operator==(const BackdropManner&) const = default;
};

/// What the running desktop has been told to show, and how that looks. Main thread only; bounded by
/// half a second.
class BackdropSource {
 public:
  virtual ~BackdropSource() = default;

  /// Whether a program is known to draw a desktop here that may have icons, be it one that does not
  /// tell what it shows.
  [[nodiscard]] virtual bool mayHaveIcons() = 0;

  /// For the present workspace. None where nobody knows: no desktop draws one, or it does not
  /// answer.
  [[nodiscard]] virtual std::optional<Backdrop> backdrop(const Monitor& monitor) = 0;

  /// How the desktop draws that backdrop on that monitor, in the monitor's pixels, opaque. Colours
  /// alone where the picture cannot be read. None while a picture takes long to be read; that it
  /// has been is told as a change, and asking again then gives the drawing.
  [[nodiscard]] virtual std::optional<QImage> render(const Backdrop& backdrop,
                                                     const Monitor& monitor) = 0;

  /// `changed` is called when what a monitor has been told to show became another, by us or by
  /// anybody, or can be drawn now; once for changes that follow each other at once. Empty: nobody
  /// watches, and nothing is watched.
  virtual void setChanged(std::function<void()> changed) = 0;
};

}  // namespace linux_desktop
