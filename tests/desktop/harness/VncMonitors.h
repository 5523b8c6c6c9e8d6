#pragma once

#include <string>
#include <vector>

namespace harness {

/// A rectangle in device pixels; x to the right and y downwards from the top left of the X screen.
struct Rect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  [[nodiscard]] int right() const { return x + width; }
  [[nodiscard]] int bottom() const { return y + height; }
  [[nodiscard]] int centreX() const { return x + width / 2; }
  [[nodiscard]] int centreY() const { return y + height / 2; }
  [[nodiscard]] bool empty() const { return width <= 0 || height <= 0; }
  [[nodiscard]] bool contains(int px, int py) const {
    return px >= x && px < right() && py >= y && py < bottom();
  }
  [[nodiscard]] bool contains(const Rect& other) const {
    return other.x >= x && other.y >= y && other.right() <= right() && other.bottom() <= bottom();
  }
  [[nodiscard]] bool intersects(const Rect& other) const {
    return other.x < right() && x < other.right() && other.y < bottom() && y < other.bottom();
  }
  bool operator==(const Rect&) const = default;
};

/// Gives a running Xvnc server exactly these monitors, as outputs VNC-0, VNC-1, … in this order.
/// An output keeps its number while it stays in the list; one that fell out is disconnected, as
/// if unplugged. `rfbSocket` is the server's RFB socket. Returns when the server has agreed; the
/// RandR events go on for about a quarter of a second. Throws std::runtime_error on refusal.
void setVncMonitors(const std::string& rfbSocket, const std::vector<Rect>& monitors);

}  // namespace harness
