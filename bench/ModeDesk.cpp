#include "bench/ModeDesk.h"

#include <algorithm>
#include <array>
#include <fstream>
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
  xcb_flush(others_->get());
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
  harness::writePng(harness::dusk(1280, 720), home / "dusk.png");
  harness::writePng(harness::meadow(1600, 900), chosenPicture());
  harness::configureIcons(*desk_, harness::DesktopIcons::Xfdesktop,
                          {{home / "dusk.png"}, {home / "dusk.png"}});
  for (const char* name : {"Salaries.ods", "Draft letter.txt"})
    std::ofstream(home / "Desktop" / name) << name << '\n';
  desk_->startIcons(harness::DesktopIcons::Xfdesktop);
  if (!desk_->until([this] { return harness::showsIcons(desk_->screen().area(iconColumn())); }))
    throw std::runtime_error("no icons appeared on the desktop");
}

void ModeDesk::openWindow(int number) {
  xcb_connection_t* x = others_->get();
  const xcb_window_t id = xcb_generate_id(x);
  const int left = number % 2 == 0 ? 160 : 1440;
  const std::uint32_t white = 0xffffff;
  xcb_create_window(x, XCB_COPY_FROM_PARENT, id, others_->root(),
                    static_cast<std::int16_t>(left + number % 50 * 8),
                    static_cast<std::int16_t>(80 + number % 40 * 6), 160, 120, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &white);
  const auto text = [&](xcb_atom_t name, const std::string& value) {
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, id, name, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(value.size()), value.data());
  };
  const std::string program = "Other" + std::to_string(number % kPrograms);
  text(XCB_ATOM_WM_NAME, "window " + std::to_string(number));
  text(XCB_ATOM_WM_CLASS, program + '\0' + program + '\0');
  // The user's own position, so that the window manager looks for none.
  constexpr std::array<std::uint32_t, 18> kUserPosition{1};
  xcb_change_property(x, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_NORMAL_HINTS,
                      XCB_ATOM_WM_SIZE_HINTS, 32, kUserPosition.size(), kUserPosition.data());
  xcb_map_window(x, id);
  windows_.push_back(id);
}

void ModeDesk::choose(const std::vector<std::string_view>& features, std::string_view more) const {
  std::string json = R"({"kUserdefaultsSelectedWallpaper": ")" + chosenPicture().string() + "\"";
  for (const std::string_view feature : features)
    json += ", \"" + std::string(feature) + "\": true";
  if (!more.empty()) json += ", " + std::string(more);
  desk_->home().writeConfig("calmdeck/settings.json", json + "}\n");
}

}  // namespace bench
