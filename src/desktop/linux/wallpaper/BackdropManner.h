#pragma once

namespace linux_desktop {

/// What becomes of a scaled size that is no whole number of pixels. Cut off after a calculation in
/// floating point, also a whole number can lose a pixel, and with it every pixel of the picture
/// moves.
enum class SizeRounding { Down, DownInFloat, DownInDouble, Nearest, Up };

/// The finer points in which one desktop draws a picture differently from another.
struct BackdropManner {
  SizeRounding rounding = SizeRounding::Down;
  /// Turns a photograph upright as its EXIF orientation says.
  bool turnsUpright = false;
  /// A shading runs over all monitors at once rather than over each.
  bool shadesWholeDesktop = false;
  /// One tile stands in the middle of the monitor, rather than in its upper left corner.
  bool centersTiles = false;
  /// A tile that is larger than the last monitor is cut to its size, around the middle.
  bool cutsTilesToLastMonitor = false;

  bool operator==(const BackdropManner&) const = default;
};

}  // namespace linux_desktop
