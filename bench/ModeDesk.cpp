#include "bench/ModeDesk.h"

#include <algorithm>
#include <stdexcept>

#include "bench/DeskProgram.h"
#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/harness/Screen.h"

namespace bench {

namespace {

constexpr int kPrograms = 10;

}  // namespace

ModeDesk::ModeDesk(int windows)
    : desk_(std::make_unique<harness::XDesk>(harness::everydayDesktop())) {
  liveOn(*desk_);
  furnish();
  others_ = std::make_unique<harness::XConnection>(desk_->server().display());
  for (int i = 0; i < windows; ++i) openWindow(i);
  const auto allManaged = [this] {
    const std::vector<xcb_window_t> stacking = desk_->windows().stacking();
    return std::ranges::all_of(windows_, [&](xcb_window_t window) {
      return std::ranges::find(stacking, window) != stacking.end();
    });
  };
  if (!desk_->until(allManaged)) throw std::runtime_error("not all windows appeared");
}

std::filesystem::path ModeDesk::chosenPicture() const {
  return desk_->home().home() / "meadow.png";
}

std::vector<harness::Rect> ModeDesk::bareSpots() {
  return {{780, 580, 40, 40}, {2150, 500, 40, 40}};
}

void ModeDesk::furnish() {
  const std::filesystem::path home = desk_->home().home();
  harness::furnish(desk_->home());
  harness::configureIcons(*desk_, harness::DesktopIcons::Xfdesktop,
                          {{home / "dusk.png"}, {home / "dusk.png"}});
  desk_->startIcons(harness::DesktopIcons::Xfdesktop);
  if (!desk_->until([this] { return harness::showsIcons(desk_->screen().area(iconColumn())); }))
    throw std::runtime_error("no icons appeared on the desktop");
}

void ModeDesk::openWindow(int number) {
  const int left = number % 2 == 0 ? 160 : 1440;
  windows_.push_back(
      others_->open({.name = "window " + std::to_string(number),
                     .className = "Other" + std::to_string(number % kPrograms),
                     .area = {left + number % 50 * 8, 80 + number % 40 * 6, 160, 120},
                     .colour = 0xffffff}));
}

void ModeDesk::choose(const std::vector<std::string_view>& features, std::string_view more) const {
  std::string json = R"({"kUserdefaultsSelectedWallpaper": ")" + chosenPicture().string() + "\"";
  for (const std::string_view feature : features)
    json += ", \"" + std::string(feature) + "\": true";
  if (!more.empty()) json += ", " + std::string(more);
  desk_->home().writeConfig("calmdeck/settings.json", json + "}\n");
}

}  // namespace bench
