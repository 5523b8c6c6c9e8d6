#include "desktop/x11/CoverDesk.h"

#include <xcb/randr.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "desktop/harness/DesktopConfiguration.h"

namespace cover_test {

using namespace std::chrono_literals;

namespace {

constexpr const char* kCoverClass = "calmdeck-cover";
constexpr Rect kFrontArea{500, 250, 300, 150};
/// Frame and shadow of a window.
constexpr int kAroundWindow = 60;
constexpr int kThickestBar = 48;

Rect grown(const Rect& area, int by) {
  return {area.x - by, area.y - by, area.width + 2 * by, area.height + 2 * by};
}

std::string text(const Rect& area) {
  return std::to_string(area.width) + "x" + std::to_string(area.height) + "+" +
         std::to_string(area.x) + "+" + std::to_string(area.y);
}

bool liesOn(const Rect& cover, const Rect& monitor) {
  return cover.x == monitor.x && cover.y == monitor.y && cover.width == monitor.width &&
         cover.height <= monitor.height && cover.height >= monitor.height - kThickestBar;
}

}  // namespace

CoverDesk::CoverDesk(const CoverDeskOptions& options)
    : desk_({.windowManager = options.windowManager}), kind_(options.icons), swaps_(options.swaps) {
  writePng(harness::dusk(1280, 720), desk_.home().home() / "left.png");
  writePng(harness::meadow(1024, 600), desk_.home().home() / "right.png");
  if (!options.composited) stopCompositing();
  if (kind_ != DesktopIcons::None) configure();
  if (options.pattern) (void)desk_.run({"xsetroot", "-mod", "16", "24"});
  desk_.startIcons(kind_);
  bare_ = desk_.settled();
  isExact_ = kind_ != DesktopIcons::Xfdesktop ||
             desk_.x().number(desk_.x().root(), "_XROOTPMAP_ID").has_value();
  if (kind_ != DesktopIcons::None) placeIcons();
  front_ = desk_.openWindow("front", kFrontArea);
  (void)desk_.settled();
  front_ = desk_.windows().info(front_.id).value();
  frontPixels_ = desk_.screen().area(front_.area);
}

void CoverDesk::configure() const {
  // Most draw a picture; the two of the file managers show that a colour is found as well.
  const bool isColour = kind_ == DesktopIcons::Pcmanfm || kind_ == DesktopIcons::PcmanfmQt;
  const std::filesystem::path home = desk_.home().home();
  if (isColour) {
    harness::configureIcons(desk_, kind_, {{.colour = "#204060"}, {.colour = "#604020"}});
  } else {
    harness::configureIcons(desk_, kind_,
                            {{.picture = home / "left.png"}, {.picture = home / "right.png"}});
  }
}

void CoverDesk::stopCompositing() const {
  harness::setXfconf(desk_, "xfwm4", "/general/use_compositing", "bool", "false");
  if (!desk_.until([&] { return !desk_.x().hasOwner("_NET_WM_CM_S0"); }))
    throw std::runtime_error("still composited");
}

void CoverDesk::openIconWindow(const Rect& area) {
  (void)desk_.x().open({.type = "DESKTOP", .area = area, .colour = {}});
}

void CoverDesk::changeWallpaper(const std::filesystem::path& picture) const {
  harness::configureIcons(desk_, kind_, {{.picture = picture}, {.picture = picture}});
}

void CoverDesk::placeIcons() {
  std::ofstream(desk_.home().home() / "Desktop/a note.txt") << "note\n";
  const Rect all = desk_.x().screenArea();
  const auto shown = [&] { return changedArea(bare_, desk_.screen().area(all)).has_value(); };
  if (!desk_.until(shown)) throw std::runtime_error("no icon came");
  icons_ = changedArea(bare_, desk_.settled());
}

void CoverDesk::launch() {
  std::vector<std::string> features{"DesktopIcons"};
  if (swaps_) features.emplace_back("Wallpaper");
  program_.emplace(desk_, features, harness::chosenPicture(bluePicture()));
}

void CoverDesk::startCovered() {
  launch();
  toggle();
  ASSERT_TRUE(desk_.until([&] { return everyMonitorIsCovered(); })) << program().errorOutput();
}

std::vector<WindowInfo> CoverDesk::covers() const {
  std::vector<WindowInfo> found = desk_.covers();
  // That of a monitor which is gone stays where nobody sees it.
  std::erase_if(found, [all = desk_.x().screenArea()](const WindowInfo& window) {
    return !window.area.intersects(all);
  });
  return found;
}

std::vector<WindowInfo> CoverDesk::iconWindows() const {
  std::vector<WindowInfo> found = desk_.windows().all();
  std::erase_if(found, [](const WindowInfo& window) {
    return window.className == kCoverClass || !window.viewable || window.type != "DESKTOP";
  });
  return found;
}

xcb_window_t CoverDesk::coverOf(const Rect& monitor) const {
  for (const WindowInfo& window : covers())
    if (liesOn(window.area, monitor)) return window.id;
  return XCB_NONE;
}

bool CoverDesk::everyMonitorIsCovered() {
  const std::vector<WindowInfo> windows = covers();
  const std::vector<Rect> monitors = desk_.server().monitors();
  return windows.size() == monitors.size() &&
         std::ranges::all_of(monitors, [&](const Rect& monitor) {
           return std::ranges::any_of(
               windows, [&](const WindowInfo& window) { return liesOn(window.area, monitor); });
         });
}

std::string CoverDesk::compare(const Image& now, bool frontShows) const {
  const Rect around = frontShows ? grown(front_.area, kAroundWindow) : Rect{};
  std::size_t wrong = 0;
  std::size_t wrongAtIcons = 0;
  Rect first;
  for (int y = 0; y < bare_.height; ++y) {
    for (int x = 0; x < bare_.width; ++x) {
      if (around.contains(x, y) || isAlike(now.at(x, y), bare_.at(x, y))) continue;
      if (wrong++ == 0) first = {x, y, 1, 1};
      if (icons_ && icons_->contains(x, y)) ++wrongAtIcons;
    }
  }
  const auto isTooMuch = [this](std::size_t count, const Rect& of) {
    return count > (isExact_ ? 0 : static_cast<std::size_t>(of.width * of.height) / 100);
  };
  if (isTooMuch(wrong, desk_.x().screenArea()) || isTooMuch(wrongAtIcons, icons_.value_or(Rect{})))
    return std::to_string(wrong) + " pixels differ, the first at " + text(first);
  if (frontShows && now.part(front_.area) != frontPixels_) return "the window above is hidden";
  return {};
}

std::string CoverDesk::fault() const {
  return compare(desk_.screen().whole(), true);
}

std::string CoverDesk::faultAfterAWhile(bool frontShows) const {
  std::string last;
  desk_.until([&] { return (last = compare(desk_.screen().whole(), frontShows)).empty(); }, 5s);
  return last;
}

bool CoverDesk::isAlike(std::uint32_t a, std::uint32_t b) const {
  return isExact_ ? a == b : harness::alike(a, b);
}

void CoverDesk::swapPrimary() const {
  const harness::XConnection& x = desk_.x();
  const harness::XReply<xcb_randr_get_monitors_reply_t> reply(
      xcb_randr_get_monitors_reply(x.get(), xcb_randr_get_monitors(x.get(), x.root(), 1), nullptr));
  if (!reply) return;
  auto info = xcb_randr_get_monitors_monitors_iterator(reply.get());
  for (; info.rem > 0; xcb_randr_monitor_info_next(&info)) {
    if (info.data->primary != 0 || info.data->x == 0) continue;
    xcb_randr_set_output_primary(x.get(), x.root(), *xcb_randr_monitor_info_outputs(info.data));
    xcb_flush(x.get());
    return;
  }
}

void CoverDesk::goToWorkspace(std::uint32_t number) {
  const harness::XConnection& x = desk_.x();
  x.askWindowManager(x.root(), "_NET_CURRENT_DESKTOP", {number, 0});
  EXPECT_TRUE(desk_.until([&] { return x.number(x.root(), "_NET_CURRENT_DESKTOP") == number; }));
}

void CoverDesk::showDesktop(bool on) {
  const harness::XConnection& x = desk_.x();
  x.askWindowManager(x.root(), "_NET_SHOWING_DESKTOP", {on ? 1U : 0U});
  EXPECT_TRUE(
      desk_.until([&] { return x.number(x.root(), "_NET_SHOWING_DESKTOP") == (on ? 1U : 0U); }));
}

}  // namespace cover_test
