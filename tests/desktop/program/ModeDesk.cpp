#include "desktop/program/ModeDesk.h"

#include <algorithm>
#include <numeric>
#include <set>

#include "desktop/harness/DesktopConfiguration.h"

using harness::Image;
using harness::Rect;
using harness::WindowInfo;

namespace {

constexpr int kIconicState = 3;
constexpr std::uint32_t kOtherWorkspace = 1;
/// Where nothing ever stands, and nothing lights up under the pointer.
constexpr int kAwayX = 2200;
constexpr int kAwayY = 500;

bool isUsers(const WindowInfo& window) {
  return window.managed && window.className == "Xmessage";
}

}  // namespace

void PrintTo(const FullDesktop& row, std::ostream* stream) {
  *stream << row.name;
}

ModeDesk::ModeDesk(const FullDesktop& kind)
    : ProgramDesk({.windowManager = kind.windowManager,
                   .panel = kind.panel,
                   .notifications = kind.notifications,
                   .sound = kind.sound}),
      kind_(kind) {
  const std::filesystem::path home = desk.home().home();
  harness::furnish(desk.home());
  desk.writeSettings(harness::kAllFeatures, harness::chosenPicture(home / "meadow.png"));
  const harness::MonitorBackdrop picture{.picture = home / "dusk.png"};
  harness::configureIcons(desk, kind_.icons, {picture, picture});
  desk.startIcons(kind_.icons);
}

// --- Acts ---

bool ModeDesk::openWindows() {
  const harness::XConnection& x = desk.x();
  shown_.push_back(desk.openWindow("Figures", {160, 90, 480, 260}));
  shown_.push_back(desk.openWindow("Elsewhere", {300, 350, 300, 160}));
  shown_.push_back(desk.openWindow("Second monitor", {1500, 150, 400, 220}));
  const xcb_window_t putAway = desk.openWindow("Put away", {700, 400, 300, 160}).id;
  shown_.push_back(desk.openWindow("Letter", {520, 260, 420, 220}));
  const xcb_window_t elsewhere = shown_[1].id;
  const xcb_window_t letter = shown_.back().id;
  x.askWindowManager(elsewhere, "_NET_WM_DESKTOP", {kOtherWorkspace, 2});
  x.askWindowManager(putAway, "WM_CHANGE_STATE", {kIconicState});
  const bool areArranged = desk.until([&] {
    return x.number(elsewhere, "_NET_WM_DESKTOP") == kOtherWorkspace &&
           desk.windows().info(putAway)->has("HIDDEN");
  }) && desk.activate(letter);
  (void)photograph();
  return areArranged;
}

bool ModeDesk::startClosed() {
  const bool isReady = start() && close();
  (void)photograph();
  return isReady;
}

// --- Effects ---

bool ModeDesk::quiet(bool quiet) {
  return desk.until(
      [&] { return harness::doNotDisturb(desk, kind_.notifications).value_or(false) == quiet; });
}

bool ModeDesk::othersHidden(bool hidden) {
  const auto asWanted = [&](const WindowInfo& window) {
    const auto now = desk.windows().info(window.id);
    return now && now->has("HIDDEN") == hidden;
  };
  return desk.until([&] { return std::ranges::all_of(shown_, asWanted); });
}

bool ModeDesk::showsChosenPicture(bool chosen) {
  const auto asWanted = [&](const Rect& monitor) {
    // Beside the windows.
    const std::uint32_t pixel = desk.screen().pixel(monitor.right() - 60, monitor.centreY());
    return harness::isOf(harness::meadow, pixel) == chosen;
  };
  return desk.until([&] { return std::ranges::all_of(desk.server().monitors(), asWanted); });
}

void ModeDesk::expectTheMode(bool on) {
  ASSERT_TRUE(sinkMuted(on));
  ASSERT_TRUE(quiet(on));
  ASSERT_TRUE(othersHidden(on));
  ASSERT_TRUE(showsChosenPicture(on));
  ASSERT_TRUE(covered(on));
}

bool ModeDesk::isBare(const Rect& monitor, std::vector<Rect> apart) {
  for (const Rect& panel : desk.panelAreas()) apart.push_back(panel);
  for (Rect& area : apart) {
    constexpr int kFrame = 60;  // frames and shadows, and what a panel casts
    area = {area.x - kFrame - monitor.x, area.y - kFrame - monitor.y, area.width + 2 * kFrame,
            area.height + 2 * kFrame};
  }
  return !harness::showsIcons(desk.screen().area(monitor), apart);
}

bool ModeDesk::bare(const std::vector<Rect>& apart) {
  const auto isBare = [&](const Rect& monitor) { return this->isBare(monitor, apart); };
  return desk.until([&] { return std::ranges::all_of(desk.server().monitors(), isBare); });
}

// --- Records ---

std::string ModeDesk::windowsNow() {
  const harness::WindowList& windows = desk.windows();
  std::string seen;
  std::set<std::string> hidden;
  for (const xcb_window_t id : windows.stacking()) {
    const auto window = windows.info(id);
    if (!window || !isUsers(*window)) continue;
    const std::string line =
        window->name + " on " + std::to_string(desk.x().number(id, "_NET_WM_DESKTOP").value_or(99));
    const Rect& area = window->area;
    if (window->has("HIDDEN")) {
      hidden.insert(line + " hidden\n");
    } else {
      seen += line + " at " + std::to_string(area.x) + "," + std::to_string(area.y) +
              (windows.active() == id ? " active\n" : "\n");
    }
  }
  return std::accumulate(hidden.begin(), hidden.end(), seen);
}

std::string ModeDesk::backdropSettings() {
  return harness::backdropSettings(desk, kind_.icons);
}

std::vector<Image> ModeDesk::photograph() {
  desk.input().moveTo(kAwayX, kAwayY);
  const Image whole = desk.settled();
  std::vector<Image> images;
  for (const Rect& monitor : desk.server().monitors()) images.push_back(whole.part(monitor));
  return images;
}
