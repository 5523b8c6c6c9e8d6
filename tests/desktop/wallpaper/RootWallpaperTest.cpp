#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <ostream>

#include "desktop/wallpaper/WallpaperDesk.h"

namespace wallpaper_test {
namespace {

using harness::Image;
using harness::Rect;
using testing::StartsWith;

constexpr std::uint32_t kRed = 0xc02020;
constexpr std::uint32_t kBlue = 0x2040c0;
constexpr std::uint32_t kYellow = 0xe0c020;
constexpr const char* kRefused = "Nobody is known here whose picture could be set.";

const std::vector<Rect> kTwo{{0, 0, 1280, 720}, {1280, 0, 1024, 600}};
const std::vector<Rect> kThree{{0, 0, 1280, 720}, {1280, 0, 1024, 600}, {2304, 0, 800, 600}};

class BareDesk : public WallpaperDesk {
 public:
  explicit BareDesk(const std::vector<Rect>& monitors = kTwo)
      : WallpaperDesk({.windowManager = harness::WindowManager::Openbox, .monitors = monitors}) {}

  [[nodiscard]] std::vector<std::uint32_t> named(const char* property) {
    return desk().x().numbers(desk().x().root(), property);
  }
  /// Of each monitor; between them lies what nobody sees.
  [[nodiscard]] std::vector<Image> monitors() {
    std::vector<Image> images;
    for (const Rect& monitor : desk().server().monitors())
      images.push_back(desk().screen().area(monitor));
    return images;
  }
  /// A photograph, as many set one.
  void photograph() {
    (void)run({"hsetroot", "-cover", picture("old.png", kRed), "-add", "#2040c0", "-add", "#c02020",
               "-gradient", "45"});
    ASSERT_NE(desk().screen().pixel(300, 300), desk().screen().pixel(600, 300));
  }
  /// Every monitor's picture is told, then every monitor is set.
  void swap() {
    const std::string chosen = picture("chosen.png", kYellow);
    old_.clear();
    const std::size_t count = desk().server().monitors().size();
    for (std::size_t i = 0; i < count; ++i) {
      old_.push_back(path(name(i)));
      EXPECT_THAT(old_.back(), StartsWith("/dev/null/"));
    }
    for (std::size_t i = 0; i < count; ++i) {
      EXPECT_EQ(set(name(i), chosen), kNothing);
      EXPECT_TRUE(shows(static_cast<int>(i), kYellow));
      EXPECT_THAT(backdrop(name(i)), StartsWith(chosen));
    }
    EXPECT_TRUE(shows(0, kYellow));
    EXPECT_EQ(named("_XROOTPMAP_ID").size(), 1U);
    EXPECT_EQ(named("_XROOTPMAP_ID"), named("ESETROOT_PMAP_ID"));
  }
  void putBack() {
    for (std::size_t i = 0; i < old_.size(); ++i) putBack(i);
  }
  void putBack(std::size_t monitor) { EXPECT_EQ(set(name(monitor), old_[monitor]), kNothing); }
  [[nodiscard]] std::string putBackAgain() { return set(kFirst, old_.front()); }
  /// In pages, of the X server. What it has freed it keeps for the next picture.
  [[nodiscard]] long memory() {
    std::ifstream file("/proc/" + std::to_string(desk().server().process().pid()) + "/statm");
    long whole = 0;
    long resident = 0;
    file >> whole >> resident;
    return resident;
  }

 private:
  [[nodiscard]] static std::string name(std::size_t monitor) {
    return "VNC-" + std::to_string(monitor);
  }

  std::vector<std::string> old_;
};

TEST(RootWallpaper, EveryMonitorGetsBackItsPartAndTheServerItsMemory) {
  BareDesk bare(kThree);
  bare.photograph();
  const std::vector<Image> before = bare.monitors();
  bare.swap();
  bare.putBack();
  EXPECT_EQ(bare.monitors(), before);
  EXPECT_NE(bare.putBackAgain(), kNothing) << "the copies are not kept any longer";
  const long memory = bare.memory();
  for (int round = 0; round < 3; ++round) {
    bare.swap();
    bare.putBack();
  }
  EXPECT_EQ(bare.monitors(), before);
  // Copies that stay would have been three by now; what a server holds beside them comes and goes.
  constexpr long kAPicture = 3104L * 720 * 4 / 4096;
  EXPECT_LT(bare.memory(), memory + kAPicture * 3 / 2);
  // The next setter frees ours as it frees any other's.
  (void)bare.run({"hsetroot", "-solid", "#2040c0"});
  EXPECT_TRUE(bare.shows(0, kBlue));
}

/// What programs leave on a root window.
struct Left {
  const char* name;
  std::vector<std::vector<std::string>> commands;
  /// A monitor comes when they have run.
  bool monitorComesLater = false;
  bool isNamedAfterwards = true;
};

/// What a test runner lists the case under.
void PrintTo(const Left& row, std::ostream* stream) {
  *stream << row.name;
}

class LeftOnTheRoot : public testing::TestWithParam<Left> {};

INSTANTIATE_TEST_SUITE_P(
    By, LeftOnTheRoot,
    testing::Values(
        Left{"AColour", {{"xsetroot", "-solid", "#2040c0"}}, false, false},
        Left{"AColourOverAnOlderPicture",
             {{"hsetroot", "-solid", "#c02020"}, {"xsetroot", "-solid", "#2040c0"}}},
        Left{"APattern", {{"xsetroot", "-mod", "16", "24", "-fg", "#2040c0", "-bg", "#c02020"}}},
        Left{"APictureThatNobodyNames",
             {{"hsetroot", "-add", "#2040c0", "-add", "#c02020", "-gradient", "45"},
              {"xprop", "-root", "-remove", "_XROOTPMAP_ID", "-remove", "ESETROOT_PMAP_ID"}}},
        Left{"APictureForFewerMonitors",
             {{"hsetroot", "-add", "#2040c0", "-add", "#c02020", "-gradient", "45"}},
             true}),
    [](const auto& row) { return row.param.name; });

TEST_P(LeftOnTheRoot, ComesBack) {
  BareDesk bare(GetParam().monitorComesLater ? std::vector<Rect>{kTwo.front()} : kTwo);
  for (const auto& command : GetParam().commands) (void)bare.run(command);
  bare.desk().server().setMonitors(kTwo);
  ASSERT_TRUE(bare.desk().until([&] { return bare.ask({"screens"}) == "2"; }));
  const std::vector<Image> before = bare.monitors();
  bare.swap();
  bare.putBack();
  EXPECT_EQ(bare.monitors(), before);
  EXPECT_EQ(!bare.named("_XROOTPMAP_ID").empty(), GetParam().isNamedAfterwards);
}

TEST(RootWallpaper, MonitorIsSetAloneAndEveryChangeIsTold) {
  BareDesk bare;
  (void)bare.run({"hsetroot", "-solid", "#2040c0"});
  EXPECT_NE(bare.path(kFirst), kNothing);
  EXPECT_EQ(bare.ask({"watch"}), "watching");
  EXPECT_EQ(bare.set(kSecond, bare.picture("chosen.png", kYellow)), kNothing);
  EXPECT_TRUE(bare.shows(1, kYellow));
  EXPECT_TRUE(bare.shows(0, kBlue));
  const std::string changes = bare.ask({"changes"});
  (void)bare.run({"hsetroot", "-solid", "#c02020"});
  EXPECT_TRUE(bare.desk().until([&] { return bare.ask({"changes"}) != changes; }));
  EXPECT_EQ(bare.backdrop(kSecond), kNothing);
}

TEST(RootWallpaper, WindowsOfTheTypeDesktopLeaveItAlone) {
  BareDesk bare;
  bare.photograph();
  // A clock.
  (void)bare.desk().openDesktopWindow({1000, 40, 200, 120}, kBlue);
  const std::vector<Image> before = bare.monitors();
  bare.swap();
  // A program with icons that comes and goes.
  const xcb_window_t icons = bare.desk().openDesktopWindow(kTwo.front(), kBlue);
  EXPECT_EQ(bare.set(kFirst, bare.picture("other.png", kRed)), kRefused);
  xcb_destroy_window(bare.desk().x().get(), icons);
  xcb_flush(bare.desk().x().get());
  EXPECT_TRUE(bare.shows(0, kYellow));
  EXPECT_THAT(bare.path(kSecond), StartsWith("/")) << "told again, by another adapter";
  bare.putBack(0);
  EXPECT_EQ(bare.monitors().front(), before.front());
}

TEST(RootWallpaper, NobodySeesItUnderAShellThatComposesItsOwn) {
  WallpaperDesk shell({});
  const harness::XConnection& x = shell.desk().x();
  const xcb_window_t manager = xcb_generate_id(x.get());
  xcb_create_window(x.get(), XCB_COPY_FROM_PARENT, manager, x.root(), -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  for (const xcb_window_t window : {x.root(), manager}) {
    xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE, window, x.atom("_NET_SUPPORTING_WM_CHECK"),
                        XCB_ATOM_WINDOW, 32, 1, &manager);
  }
  const std::string name = "Mutter (Muffin)";
  xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE, manager, x.atom("_NET_WM_NAME"),
                      x.atom("UTF8_STRING"), 8, static_cast<std::uint32_t>(name.size()),
                      name.data());
  xcb_flush(x.get());
  const std::string chosen = shell.picture("chosen.png", kYellow);
  EXPECT_EQ(shell.set(kFirst, chosen), kNothing) << "while it does not compose";
  xcb_set_selection_owner(x.get(), manager, x.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
  xcb_flush(x.get());
  EXPECT_EQ(shell.set(kFirst, chosen), kRefused);
  EXPECT_EQ(shell.path(kFirst), kNothing);
}

class RootDepth : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Of, RootDepth, testing::Values(16, 30),
                         [](const auto& row) { return std::to_string(row.param); });

TEST_P(RootDepth, ShowsTheRightColours) {
  WallpaperDesk deep({.windowManager = harness::WindowManager::Openbox, .depth = GetParam()});
  (void)deep.run({"xsetroot", "-solid", "#2040c0"});
  ASSERT_TRUE(deep.shows(0, kBlue));
  const Image before = deep.desk().screen().whole();
  const std::string old = deep.path("screen");
  EXPECT_EQ(deep.set("screen", deep.picture("chosen.png", kYellow)), kNothing);
  EXPECT_TRUE(deep.shows(0, kYellow)) << std::hex << deep.middleOf(0);
  EXPECT_EQ(deep.set("screen", old), kNothing);
  EXPECT_EQ(deep.desk().screen().whole(), before);
}

}  // namespace
}  // namespace wallpaper_test
