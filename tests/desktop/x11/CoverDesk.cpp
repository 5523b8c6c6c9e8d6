#include "desktop/x11/CoverDesk.h"

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
    : XDesk({.windowManager = options.windowManager}), kind_(options.icons), swaps_(options.swaps) {
  writePng(harness::dusk(1280, 720), home().home() / "left.png");
  writePng(harness::meadow(1024, 600), home().home() / "right.png");
  if (!options.composited) stopCompositing();
  if (kind_ != DesktopIcons::None) configure();
  if (options.pattern) (void)run({"xsetroot", "-mod", "16", "24"});
  startIcons(kind_);
  bare_ = settled();
  isExact_ =
      kind_ != DesktopIcons::Xfdesktop || x().number(x().root(), "_XROOTPMAP_ID").has_value();
  if (kind_ != DesktopIcons::None) placeIcons();
  front = openWindow("front", kFrontArea);
  (void)settled();
  front = windows().info(front.id).value();
  frontPixels_ = screen().area(front.area);
}

void CoverDesk::configure() const {
  // Most draw a picture; the two of the file managers show that a colour is found as well.
  const bool isColour = kind_ == DesktopIcons::Pcmanfm || kind_ == DesktopIcons::PcmanfmQt;
  const std::filesystem::path folder = home().home();
  if (isColour) {
    harness::configureIcons(*this, kind_, {{.colour = "#204060"}, {.colour = "#604020"}});
  } else {
    harness::configureIcons(*this, kind_,
                            {{.picture = folder / "left.png"}, {.picture = folder / "right.png"}});
  }
}

void CoverDesk::stopCompositing() const {
  harness::setXfconf(*this, "xfwm4", "/general/use_compositing", "bool", "false");
  if (!until([&] { return !x().hasOwner("_NET_WM_CM_S0"); }))
    throw std::runtime_error("still composited");
}

void CoverDesk::openIconWindow(const Rect& area) {
  (void)x().open({.type = "DESKTOP", .area = area, .colour = {}});
}

void CoverDesk::changeWallpaper(const std::filesystem::path& picture) const {
  harness::configureIcons(*this, kind_, {{.picture = picture}, {.picture = picture}});
}

void CoverDesk::placeIcons() {
  std::ofstream(home().home() / "Desktop/a note.txt") << "note\n";
  const Rect all = x().screenArea();
  const auto shown = [&] { return changedArea(bare_, screen().area(all)).has_value(); };
  if (!until(shown)) throw std::runtime_error("no icon came");
  iconArea = changedArea(bare_, settled());
}

void CoverDesk::launch() {
  std::vector<std::string> features{"DesktopIcons"};
  if (swaps_) features.emplace_back("Wallpaper");
  program_.emplace(*this, features, harness::chosenPicture(bluePicture()));
}

void CoverDesk::startCovered() {
  launch();
  toggle();
  ASSERT_TRUE(until([&] { return everyMonitorIsCovered(); }));
}

xcb_window_t CoverDesk::firstCover() const {
  for (const WindowInfo& window : covers())
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
      if (iconArea && iconArea->contains(x, y)) ++wrongAtIcons;
    }
  }
  const auto isTooMuch = [this](std::size_t count, const Rect& of) {
    return count > (isExact_ ? 0 : static_cast<std::size_t>(of.width * of.height) / 100);
  };
  if (isTooMuch(wrong, x().screenArea()) || isTooMuch(wrongAtIcons, iconArea.value_or(Rect{})))
    return std::to_string(wrong) + " pixels differ, the first at " + first;
  if (frontShows && now.part(front.area) != frontPixels_) return "the window above is hidden";
  return {};
}

std::string CoverDesk::fault() const {
  return compare(screen().whole(), true);
}

std::string CoverDesk::faultAfterAWhile(bool frontShows) const {
  std::string last;
  until([&] { return (last = compare(screen().whole(), frontShows)).empty(); }, 5s);
  return last;
}

bool CoverDesk::isAlike(std::uint32_t a, std::uint32_t b) const {
  return isExact_ ? a == b : harness::alike(a, b);
}

void CoverDesk::setOnRoot(const char* property, std::uint32_t value) {
  x().askWindowManager(x().root(), property, {value, 0});
  EXPECT_TRUE(until([&] { return x().number(x().root(), property) == value; }));
}

}  // namespace cover_test
