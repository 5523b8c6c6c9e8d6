#pragma once

namespace platform {

// All lengths are points (see NSScreen and the desktop for pixels); x points right and y points up.

struct NSPoint {
  double x = 0;
  double y = 0;
  bool operator==(const NSPoint&) const = default;
};

struct NSSize {
  double width = 0;
  double height = 0;
  bool operator==(const NSSize&) const = default;
};

struct NSRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  bool operator==(const NSRect&) const = default;
};

/// The edge of a rectangle, with the platform's numbers.
enum class NSRectEdge { MinX = 0, MinY = 1, MaxX = 2, MaxY = 3 };

}  // namespace platform
