#include "desktop/tray/TrayDesk.h"

#include <algorithm>
#include <chrono>
#include <sstream>

using harness::Rect;
using namespace std::chrono_literals;

TrayDesk::TrayDesk(harness::Panel panel, bool sessionBus)
    : panel_(panel),
      desk_({.windowManager = harness::WindowManager::Openbox,
             .panel = panel,
             .sessionBus = sessionBus}) {}

void TrayDesk::startProbe(const std::vector<std::string>& arguments) {
  std::vector<std::string> argv{TRAY_PROBE};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  probe_ = desk_.start(std::move(argv));
  ASSERT_TRUE(says("up"));
}

testing::AssertionResult TrayDesk::says(const std::string& text) {
  if (probe_->waitForLine("^" + text + "$")) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "no \"" << text << "\" in:\n"
                                     << probe_->output() << probe_->errorOutput();
}

std::string TrayDesk::reports() const {
  std::istringstream lines(probe_->output());
  std::string all;
  for (std::string line; std::getline(lines, line);) {
    const bool report =
        line == "left" || line == "right" || line == "closed" || line.starts_with("chosen");
    if (report) all += (all.empty() ? "" : " ") + line;
  }
  return all;
}

std::optional<Rect> TrayDesk::areaOf(std::uint32_t colour) const {
  const harness::Image image = desk_.screen().whole();
  Rect area{image.width, image.height, 0, 0};
  int right = 0;
  int bottom = 0;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      if (image.at(x, y) != colour) continue;
      area.x = std::min(area.x, x);
      area.y = std::min(area.y, y);
      right = std::max(right, x + 1);
      bottom = std::max(bottom, y + 1);
    }
  }
  area.width = right - area.x;
  area.height = bottom - area.y;
  constexpr int kLeast = 12;  // less is an icon that a panel is still drawing
  if (area.width < kLeast || area.height < kLeast) return std::nullopt;
  return area;
}

std::optional<Rect> TrayDesk::icon(std::uint32_t colour) {
  std::optional<Rect> area;
  const auto inPlace = [&] {
    const std::optional<Rect> before = std::exchange(area, areaOf(colour));
    return area && area == before;
  };
  if (!desk_.until(inPlace)) area.reset();
  if (area) icon_ = *area;
  return area;
}

void TrayDesk::click(harness::Button button) {
  desk_.input().click(icon_.centreX(), icon_.centreY(), button);
}

testing::AssertionResult TrayDesk::openMenu() {
  withoutMenu_ = desk_.windows().viewable();
  if (desk_.opensAWindow([this] { click(harness::Button::Right); }))
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << "no menu opened";
}

testing::AssertionResult TrayDesk::escapeMenu() {
  desk_.input().key("Escape");
  const auto gone = [&] { return std::ranges::includes(withoutMenu_, desk_.windows().viewable()); };
  if (!desk_.until(gone)) return testing::AssertionFailure() << "the menu stayed";
  return testing::AssertionSuccess();
}
