#include "desktop/x11/CoverDesk.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "desktop/harness/DesktopConfiguration.h"

namespace cover_test {

using namespace std::chrono_literals;

namespace {

constexpr Rect kFrontArea{500, 250, 300, 150};
/// Frame and shadow of a window.
constexpr int kAroundWindow = 60;

Rect grown(const Rect& area, int by) {
  return {area.x - by, area.y - by, area.width + 2 * by, area.height + 2 * by};
}

}  // namespace

CoverDesk::CoverDesk(const CoverDeskOptions& options)
    : desk({.windowManager = options.windowManager}), kind_(options.icons), swaps_(options.swaps) {
  writePng(harness::dusk(1280, 720), desk.home().home() / "left.png");
  writePng(harness::meadow(1024, 600), desk.home().home() / "right.png");
  if (!options.composited) stopCompositing();
  if (kind_ != DesktopIcons::None) configure();
  if (options.pattern) (void)desk.run({"xsetroot", "-mod", "16", "24"});
  desk.startIcons(kind_);
  bare_ = desk.settled();
  isExact_ = kind_ != DesktopIcons::Xfdesktop ||
             desk.x().number(desk.x().root(), "_XROOTPMAP_ID").has_value();
  if (kind_ != DesktopIcons::None) placeIcons();
  front = desk.openWindow("front", kFrontArea);
  (void)desk.settled();
  front = desk.windows().info(front.id).value();
  frontPixels_ = desk.screen().area(front.area);
}

void CoverDesk::configure() const {
  // Most draw a picture; the two of the file managers show that a colour is found as well.
  const bool isColour = kind_ == DesktopIcons::Pcmanfm || kind_ == DesktopIcons::PcmanfmQt;
  const std::filesystem::path home = desk.home().home();
  if (isColour) {
    harness::configureIcons(desk, kind_, {{.colour = "#204060"}, {.colour = "#604020"}});
  } else {
    harness::configureIcons(desk, kind_,
                            {{.picture = home / "left.png"}, {.picture = home / "right.png"}});
  }
}

void CoverDesk::stopCompositing() const {
  harness::setXfconf(desk, "xfwm4", "/general/use_compositing", "bool", "false");
  if (!desk.until([&] { return !desk.x().hasOwner("_NET_WM_CM_S0"); }))
    throw std::runtime_error("still composited");
}

void CoverDesk::openIconWindow(const Rect& area) {
  (void)desk.x().open({.type = "DESKTOP", .area = area, .colour = {}});
}

void CoverDesk::changeWallpaper(const std::filesystem::path& picture) const {
  harness::configureIcons(desk, kind_, {{.picture = picture}, {.picture = picture}});
}

void CoverDesk::placeIcons() {
  std::ofstream(desk.home().home() / "Desktop/a note.txt") << "note\n";
  const Rect all = desk.x().screenArea();
  const auto shown = [&] { return changedArea(bare_, desk.screen().area(all)).has_value(); };
  if (!desk.until(shown)) throw std::runtime_error("no icon came");
  icons = changedArea(bare_, desk.settled());
}

void CoverDesk::launch() {
  std::vector<std::string> features{"DesktopIcons"};
  if (swaps_) features.emplace_back("Wallpaper");
  program_.emplace(desk, features, harness::chosenPicture(bluePicture()));
}

void CoverDesk::startCovered() {
  launch();
  toggle();
  ASSERT_TRUE(desk.until([&] { return desk.everyMonitorIsCovered(); }));
}

xcb_window_t CoverDesk::firstCover() const {
  for (const WindowInfo& window : desk.covers())
    if (window.area.x == 0) return window.id;
  return XCB_NONE;
}

std::string CoverDesk::compare(const Image& now, bool frontShows) const {
  const Rect around = frontShows ? grown(front.area, kAroundWindow) : Rect{};
  std::size_t wrong = 0;
  std::size_t wrongAtIcons = 0;
  std::string first;
  for (int y = 0; y < bare_.height; ++y) {
    for (int x = 0; x < bare_.width; ++x) {
      if (around.contains(x, y) || isAlike(now.at(x, y), bare_.at(x, y))) continue;
      if (wrong++ == 0) first = std::to_string(x) + "," + std::to_string(y);
      if (icons && icons->contains(x, y)) ++wrongAtIcons;
    }
  }
  const auto isTooMuch = [this](std::size_t count, const Rect& of) {
    return count > (isExact_ ? 0 : static_cast<std::size_t>(of.width * of.height) / 100);
  };
  if (isTooMuch(wrong, desk.x().screenArea()) || isTooMuch(wrongAtIcons, icons.value_or(Rect{})))
    return std::to_string(wrong) + " pixels differ, the first at " + first;
  if (frontShows && now.part(front.area) != frontPixels_) return "the window above is hidden";
  return {};
}

std::string CoverDesk::fault() const {
  return compare(desk.screen().whole(), true);
}

std::string CoverDesk::faultAfterAWhile(bool frontShows) const {
  std::string last;
  desk.until([&] { return (last = compare(desk.screen().whole(), frontShows)).empty(); }, 5s);
  return last;
}

bool CoverDesk::isAlike(std::uint32_t a, std::uint32_t b) const {
  return isExact_ ? a == b : harness::alike(a, b);
}

void CoverDesk::setOnRoot(const char* property, std::uint32_t value) {
  const harness::XConnection& x = desk.x();
  x.askWindowManager(x.root(), property, {value, 0});
  EXPECT_TRUE(desk.until([&] { return x.number(x.root(), property) == value; }));
}

}  // namespace cover_test
