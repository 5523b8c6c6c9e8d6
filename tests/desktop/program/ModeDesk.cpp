#include "desktop/program/ModeDesk.h"

#include <algorithm>
#include <sstream>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/harness/Screen.h"

using harness::DesktopIcons;
using harness::Image;
using harness::Rect;
using harness::WindowInfo;
using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;
using namespace std::chrono_literals;

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
    : kind_(kind),
      program_({.windowManager = kind.windowManager,
                .panel = kind.panel,
                .notifications = kind.notifications,
                .sound = kind.sound}) {
  const std::filesystem::path home = desk().home().home();
  harness::furnish(desk().home());
  desk().writeSettings(harness::kAllFeatures, harness::chosenPicture(home / "meadow.png"));
  const harness::MonitorBackdrop picture{.picture = home / "dusk.png"};
  harness::configureIcons(desk(), kind_.icons, {picture, picture});
  desk().startIcons(kind_.icons);
}

AssertionResult ModeDesk::waitFor(const std::function<bool()>& fact, const std::string& claim) {
  if (desk().until(fact)) return AssertionSuccess();
  return AssertionFailure() << "not so: " << claim << "; the program wrote\n"
                            << program_.program().errorOutput();
}

// --- Acts ---

AssertionResult ModeDesk::openWindows() {
  const harness::XConnection& x = desk().x();
  shown_.push_back(desk().openWindow("Figures", {160, 90, 480, 260}));
  shown_.push_back(desk().openWindow("Elsewhere", {300, 350, 300, 160}));
  shown_.push_back(desk().openWindow("Second monitor", {1500, 150, 400, 220}));
  minimised_ = desk().openWindow("Put away", {700, 400, 300, 160});
  shown_.push_back(desk().openWindow("Letter", {520, 260, 420, 220}));
  x.askWindowManager(shown_[1].id, "_NET_WM_DESKTOP", {kOtherWorkspace, 2});
  x.askWindowManager(minimised_->id, "WM_CHANGE_STATE", {kIconicState});
  desk().windows().activate(shown_.back().id);
  const auto arranged = [&] {
    const auto putAway = desk().windows().info(minimised_->id);
    return x.number(shown_[1].id, "_NET_WM_DESKTOP") == kOtherWorkspace && putAway &&
           putAway->has("HIDDEN") && desk().windows().active() == shown_.back().id;
  };
  if (!desk().until(arranged)) return AssertionFailure() << "the windows do not stand as wanted";
  (void)photograph();
  return AssertionSuccess();
}

AssertionResult ModeDesk::startProgram() {
  if (AssertionResult started = program_.start(); !started) return started;
  if (AssertionResult closed = closePanel(); !closed) return closed;
  (void)photograph();
  return AssertionSuccess();
}

AssertionResult ModeDesk::closePanel() {
  if (!desk().openPopover()) return AssertionSuccess();
  desk().input().key("Escape");
  return program_.closes();
}

AssertionResult ModeDesk::click(const std::string& name) {
  if (!desk().openPopover()) {
    if (AssertionResult clicked = program_.clickIcon(); !clicked) return clicked;
    if (AssertionResult opened = program_.opens(); !opened) return opened;
  }
  return program_.clickSwitch(name);
}

// --- Effects ---

AssertionResult ModeDesk::quiet(bool quiet) {
  return waitFor(
      [&] { return harness::doNotDisturb(desk(), kind_.notifications).value_or(false) == quiet; },
      quiet ? "Do Not Disturb is on" : "Do Not Disturb is off");
}

AssertionResult ModeDesk::othersHidden(bool hidden) {
  const auto asWanted = [&](const WindowInfo& window) {
    const auto now = desk().windows().info(window.id);
    return now && now->has("HIDDEN") == hidden;
  };
  return waitFor([&] { return std::ranges::all_of(shown_, asWanted); },
                 hidden ? "every other window is hidden" : "no window is hidden");
}

AssertionResult ModeDesk::showsChosenPicture(bool chosen) {
  const auto showsIt = [&](const Rect& monitor) {
    // Beside the windows.
    return harness::isOf(harness::meadow,
                         desk().screen().pixel(monitor.right() - 60, monitor.centreY()));
  };
  return waitFor(
      [&] {
        const std::vector<Rect> monitors = desk().server().monitors();
        return chosen ? std::ranges::all_of(monitors, showsIt)
                      : std::ranges::none_of(monitors, showsIt);
      },
      chosen ? "the chosen picture shows" : "the old picture shows");
}

bool ModeDesk::everyMonitorHasItsCover() {
  const std::vector<WindowInfo> covers = desk().covers();
  const std::vector<Rect> monitors = desk().server().monitors();
  return covers.size() == monitors.size() &&
         std::ranges::all_of(monitors, [&](const Rect& monitor) {
           return std::ranges::find(covers, monitor, &WindowInfo::area) != covers.end();
         });
}

AssertionResult ModeDesk::covered(bool covered) {
  return waitFor([&] { return covered ? everyMonitorHasItsCover() : desk().covers().empty(); },
                 covered ? "every monitor is covered" : "the covers are gone");
}

AssertionResult ModeDesk::inTheMode(bool on) {
  using Effect = AssertionResult (ModeDesk::*)(bool);
  for (const Effect effect : {&ModeDesk::muted, &ModeDesk::quiet, &ModeDesk::othersHidden,
                              &ModeDesk::showsChosenPicture, &ModeDesk::covered}) {
    if (AssertionResult result = (this->*effect)(on); !result) return result;
  }
  return AssertionSuccess();
}

bool ModeDesk::isBare(const Rect& monitor, std::vector<Rect> apart) {
  for (const Rect& panel : desk().panelAreas()) apart.push_back(panel);
  for (Rect& area : apart) {
    constexpr int kFrame = 60;  // frames and shadows, and what a panel casts
    area = {area.x - kFrame - monitor.x, area.y - kFrame - monitor.y, area.width + 2 * kFrame,
            area.height + 2 * kFrame};
  }
  return !harness::showsIcons(desk().screen().area(monitor), apart);
}

AssertionResult ModeDesk::bare(const std::vector<Rect>& apart) {
  return waitFor(
      [&] {
        const std::vector<Rect> monitors = desk().server().monitors();
        return std::ranges::all_of(monitors,
                                   [&](const Rect& monitor) { return isBare(monitor, apart); });
      },
      "nothing but the picture is to be seen");
}

AssertionResult ModeDesk::looksAsIn(const Image& before) {
  const Image now = photograph();
  for (const Rect& monitor : desk().server().monitors()) {
    const auto other = changedArea(before.part(monitor), now.part(monitor));
    if (!other) continue;
    return AssertionFailure() << "on the monitor at " << monitor.x << " another " << other->width
                              << "x" << other->height << " at " << other->x << "," << other->y;
  }
  return AssertionSuccess();
}

// --- Records ---

std::string ModeDesk::windowsNow() {
  const harness::WindowList& windows = desk().windows();
  std::vector<std::string> seen;
  std::vector<std::string> others;
  for (const xcb_window_t id : windows.stacking()) {
    const auto window = windows.info(id);
    if (!window || !isUsers(*window)) continue;
    const std::string where =
        " workspace " + std::to_string(desk().x().number(id, "_NET_WM_DESKTOP").value_or(99));
    if (window->has("HIDDEN")) {
      others.push_back(window->name + where + " hidden");
    } else {
      const Rect& area = window->area;
      seen.push_back(window->name + where + " at " + std::to_string(area.x) + "," +
                     std::to_string(area.y) + (windows.active() == id ? " active" : ""));
    }
  }
  std::ranges::sort(others);
  seen.insert(seen.end(), others.begin(), others.end());
  std::ostringstream text;
  for (const std::string& line : seen) text << line << '\n';
  return text.str();
}

std::string ModeDesk::backdropSettings() {
  return harness::backdropSettings(desk(), kind_.icons);
}

Image ModeDesk::photograph() {
  desk().input().moveTo(kAwayX, kAwayY);
  return desk().settled();
}
