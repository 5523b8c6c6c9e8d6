#include "desktop/harness/TrayIconFinder.h"

namespace harness {

using namespace std::chrono_literals;

TrayIconFinder::TrayIconFinder(const Screen& screen, const std::vector<Rect>& panels)
    : screen_(screen) {
  for (const Rect& area : panels) panels_.push_back({area, screen.area(area)});
}

std::optional<Rect> TrayIconFinder::changed(const Panel& panel, const Image& now) const {
  std::optional<Rect> area = changedArea(panel.before, now);
  if (!area) return std::nullopt;
  area->x += panel.area.x;
  area->y += panel.area.y;
  return area;
}

std::optional<Rect> TrayIconFinder::find(std::chrono::milliseconds patience) const {
  std::optional<Rect> icon;
  const auto look = [&] {
    for (const Panel& panel : panels_) {
      if (!changed(panel, screen_.area(panel.area))) continue;
      icon = changed(panel, screen_.settled(panel.area, 150ms, kPatience));
      if (icon) return true;
    }
    return false;
  };
  screen_.waitUntil(look, patience);
  return icon;
}

}  // namespace harness
