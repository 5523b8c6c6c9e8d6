#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

#include "desktop/wallpaper/WallpaperDesk.h"

namespace wallpaper_test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using namespace std::chrono_literals;

constexpr std::uint32_t kRed = 0xc02020;
constexpr std::uint32_t kGreen = 0x20a040;
constexpr std::uint32_t kBlue = 0x2040c0;
constexpr std::uint32_t kYellow = 0xe0c020;

class XfceDesk : public WallpaperDesk {
 public:
  XfceDesk()
      : WallpaperDesk({.windowManager = harness::WindowManager::Xfwm4,
                       .icons = harness::DesktopIcons::Xfdesktop}) {}

  static std::string key(const std::string& screen, int workspace, const std::string& name) {
    return "/backdrop/screen0/monitor" + screen + "/workspace" + std::to_string(workspace) + "/" +
           name;
  }
  void write(const std::string& property, const std::string& type, const std::string& value) const {
    (void)run(
        {"xfconf-query", "-c", "xfce4-desktop", "-p", property, "-n", "-t", type, "-s", value});
  }
  /// A picture on every workspace.
  void show(const std::string& screen, const std::string& file) const {
    for (int i = 0; i < 4; ++i) write(key(screen, i, "last-image"), "string", file);
  }
  void style(const std::string& screen, const std::string& number) const {
    for (int i = 0; i < 4; ++i) write(key(screen, i, "image-style"), "int", number);
  }
  [[nodiscard]] std::string value(const std::string& property) const {
    std::string text = run({"xfconf-query", "-c", "xfce4-desktop", "-p", property});
    return text.substr(0, text.size() - 1);
  }
  /// Every key and value of the whole channel.
  [[nodiscard]] std::string dump() const {
    return run({"xfconf-query", "-c", "xfce4-desktop", "-lv"});
  }
};

/// What the desktop shows before the swap.
struct Start {
  const char* name;
  void (*prepare)(XfceDesk& xfce);

  friend std::ostream& operator<<(std::ostream& stream, const Start& start) {
    return stream << start.name;
  }
};

void startFromPictures(XfceDesk& xfce) {
  xfce.show(kFirst, xfce.picture("one.png", kRed));
  xfce.show(kSecond, xfce.picture("two.png", kGreen));
  xfce.style(kSecond, "4");
}

void startFromSlideShow(XfceDesk& xfce) {
  startFromPictures(xfce);
  for (int i = 0; i < 4; ++i) {
    xfce.write(XfceDesk::key(kFirst, i, "backdrop-cycle-enable"), "bool", "true");
    xfce.write(XfceDesk::key(kFirst, i, "backdrop-cycle-timer"), "uint", "60");
  }
}

void startFromColour(XfceDesk& xfce) {
  startFromPictures(xfce);
  xfce.style(kFirst, "0");
  xfce.style(kSecond, "0");
}

void startFromNothing(XfceDesk& xfce) {
  (void)xfce.run({"xfconf-query", "-c", "xfce4-desktop", "-p", "/backdrop", "-r", "-R"});
}

void startFromOnePictureAWorkspace(XfceDesk& xfce) {
  startFromPictures(xfce);
  xfce.write("/backdrop/single-workspace-mode", "bool", "false");
  xfce.write(XfceDesk::key(kFirst, 1, "last-image"), "string", xfce.picture("b.png", kBlue));
  xfce.write(XfceDesk::key(kSecond, 2, "image-style"), "int", "0");
}

class XfceWallpaperTest : public testing::TestWithParam<Start> {};

TEST_P(XfceWallpaperTest, WholeStateComesBack) {
  XfceDesk xfce;
  ASSERT_TRUE(xfce.desk().until([&] { return xfce.middleOf(0) != 0; }));
  GetParam().prepare(xfce);
  const std::string chosen = xfce.picture("chosen.png", kYellow);
  const harness::Rect middle{600, 300, 1300, 200};
  const harness::Image before = xfce.desk().screen().settled(middle, 400ms, harness::kPatience);
  const std::string dump = xfce.dump();
  const std::vector<std::string> old{xfce.path(kFirst), xfce.path(kSecond)};

  EXPECT_EQ(xfce.set(kFirst, chosen), kNothing);
  EXPECT_EQ(xfce.set(kSecond, chosen), kNothing);
  EXPECT_TRUE(xfce.shows(0, kYellow));
  EXPECT_TRUE(xfce.shows(1, kYellow));
  for (int workspace = 0; workspace < 4; ++workspace) {
    EXPECT_EQ(xfce.value(XfceDesk::key(kSecond, workspace, "last-image")), chosen);
  }

  EXPECT_EQ(xfce.set(kFirst, old[0]), kNothing);
  EXPECT_EQ(xfce.set(kSecond, old[1]), kNothing);
  EXPECT_EQ(xfce.dump(), dump);
  EXPECT_TRUE(xfce.desk().until([&] { return xfce.desk().screen().area(middle) == before; }));
  EXPECT_EQ(xfce.dump(), dump);
}

INSTANTIATE_TEST_SUITE_P(
    From, XfceWallpaperTest,
    testing::Values(Start{"Pictures", startFromPictures}, Start{"SlideShow", startFromSlideShow},
                    Start{"Colour", startFromColour}, Start{"AbsentKeys", startFromNothing},
                    Start{"OnePictureAWorkspace", startFromOnePictureAWorkspace}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(XfceWallpaper, WhatTheUserChangesMeanwhileStaysAndOnlyWhatWasChangedForThePictureGoesBack) {
  XfceDesk xfce;
  startFromColour(xfce);
  startFromSlideShow(xfce);  // whose pictures are no longer seen on the first monitor
  xfce.style(kFirst, "0");
  const std::vector<std::string> old{xfce.path(kFirst), xfce.path(kSecond)};
  const std::string chosen = xfce.picture("chosen.png", kYellow);
  EXPECT_EQ(xfce.set(kFirst, chosen), kNothing);
  EXPECT_EQ(xfce.set(kSecond, chosen), kNothing);
  const std::string secondsStyle = XfceDesk::key(kSecond, 0, "image-style");
  xfce.write(secondsStyle, "int", "3");
  const std::string thirdSpacesStyle = XfceDesk::key(kFirst, 2, "image-style");
  xfce.write(thirdSpacesStyle, "int", "1");
  EXPECT_EQ(xfce.set(kFirst, old[0]), kNothing);
  EXPECT_EQ(xfce.set(kSecond, old[1]), kNothing);
  EXPECT_EQ(xfce.value(secondsStyle), "3");
  EXPECT_EQ(xfce.value(thirdSpacesStyle), "1");
  EXPECT_EQ(xfce.value(XfceDesk::key(kFirst, 0, "image-style")), "0");
  EXPECT_EQ(xfce.value(XfceDesk::key(kSecond, 1, "image-style")), "4");
  EXPECT_EQ(xfce.value(XfceDesk::key(kFirst, 2, "backdrop-cycle-enable")), "true");
  EXPECT_EQ(xfce.path(kSecond), old[1]);
}

TEST(XfceWallpaper, OneReadingServesATurn) {
  XfceDesk xfce;
  startFromPictures(xfce);
  const auto bus = xfce.desk().start({"dbus-monitor", "--session", "path='/org/xfce/Xfconf'"});
  const auto calls = [&](const std::string& method) {
    const std::string seen = bus->output();
    std::size_t count = 0;
    for (auto at = seen.find("member=" + method); at != std::string::npos;
         at = seen.find("member=" + method, at + 1)) {
      ++count;
    }
    return count;
  };
  // What comes after it on the bus is seen after it.
  const auto mark = [&] {
    const std::size_t before = calls("ListChannels");
    return xfce.desk().until([&] {
      (void)xfce.desk().bus().call("org.xfce.Xfconf", "/org/xfce/Xfconf",
                                   "org.xfce.Xfconf.ListChannels", {});
      return calls("ListChannels") > before;
    });
  };
  ASSERT_TRUE(mark()) << bus->errorOutput();
  const std::string chosen = xfce.picture("chosen.png", kYellow);
  const std::size_t readBefore = calls("GetAllProperties");
  const std::vector<std::string> answers = xfce.askTogether({{"path", kFirst},
                                                             {"path", kSecond},
                                                             {"set", kFirst, chosen},
                                                             {"set", kSecond, chosen},
                                                             {"path", kSecond}});
  EXPECT_EQ(answers.back(), chosen);
  ASSERT_TRUE(mark());
  EXPECT_EQ(calls("GetAllProperties") - readBefore, 1U);
}

TEST(XfceWallpaper, TellsThePictureOrAReservedPath) {
  XfceDesk xfce;
  startFromPictures(xfce);
  EXPECT_THAT(xfce.path(kFirst), testing::EndsWith("/one.png"));
  EXPECT_THAT(xfce.path(kSecond), testing::EndsWith("/two.png"));
  EXPECT_THAT(xfce.backdrop(kSecond), HasSubstr("/two.png\t4\t0\t#152233"));
  EXPECT_EQ(xfce.path("HDMI-7"), kNothing);
  xfce.style(kFirst, "0");
  EXPECT_THAT(xfce.path(kFirst), StartsWith("/dev/null/"));
  EXPECT_EQ(xfce.backdrop(kFirst), "\t0\t0\t#152233");
}

TEST(XfceWallpaper, AnyFileNameIsShown) {
  XfceDesk xfce;
  startFromPictures(xfce);
  std::uint32_t colour = 0x404040;
  for (const char* name :
       {"with blank.png", "per%20cent.png", "quo\"te's.png", "\xc3\xa4\xe5\xb1\xb1.png"}) {
    const std::string path = xfce.picture(name, colour);
    EXPECT_EQ(xfce.set(kFirst, path), kNothing);
    EXPECT_EQ(xfce.value(XfceDesk::key(kFirst, 0, "last-image")), path);
    EXPECT_TRUE(xfce.shows(0, colour)) << name;
    EXPECT_EQ(xfce.path(kFirst), path);
    colour += 0x202020;
  }
}

/// A picture file that ends too early.
std::string cutOff(const XfceDesk& xfce, const std::string& name) {
  const std::string path = xfce.picture(name, kBlue);
  std::filesystem::resize_file(path, std::filesystem::file_size(path) * 2 / 3);
  return path;
}

TEST(XfceWallpaper, PictureThatTakesLongIsShownOnceItIsReadAndABrokenOneNever) {
  XfceDesk xfce;
  startFromPictures(xfce);
  const std::string chosen = xfce.picture("chosen.png", kYellow);
  EXPECT_EQ(xfce.ask({"patience", "0"}), kNothing);
  const std::string dump = xfce.dump();
  const std::string old = xfce.path(kFirst);
  // Nothing comes in between, not even that it was read.
  (void)xfce.askTogether({{"set", kFirst, chosen}, {"set", kFirst, old}});
  const std::string answer = xfce.set(kFirst, cutOff(xfce, "cut.png"));
  EXPECT_TRUE(xfce.desk().until([&] {
    return (answer + xfce.complaints()).find("cut.png is not a whole picture.") !=
           std::string::npos;
  }));
  EXPECT_EQ(xfce.dump(), dump);

  EXPECT_EQ(xfce.ask({"watch"}), "watching");
  EXPECT_EQ(xfce.set(kFirst, chosen), kNothing);
  EXPECT_TRUE(xfce.shows(0, kYellow));
  EXPECT_EQ(xfce.path(kFirst), chosen);
  const std::string drawn = xfce.desk().home().home() / "drawn.png";
  EXPECT_TRUE(xfce.desk().until([&] { return xfce.ask({"render", kFirst, drawn}) == "saved"; }));
}

TEST(XfceWallpaper, RefusedPicturesChangeNothing) {
  XfceDesk xfce;
  startFromPictures(xfce);
  const std::string dump = xfce.dump();
  const std::string home = xfce.desk().home().home();
  std::ofstream(home + "/text.png") << "no picture";
  std::ofstream(home + "/huge.ppm") << "P6\n20000 14000\n255\n.";
  const std::pair<std::string, const char*> rows[] = {
      {home + "/missing.png", "does not exist"},
      {home + "/text.png", "is not a picture"},
      {home + "/huge.ppm", "too large"},
      {cutOff(xfce, "cut.png"), "is not a whole picture"},
      {home, "is not a file"},
      {"relative.png", "not a whole path"},
      {"/dev/null/desktop-picture/stale", "does not exist"},
  };
  for (const auto& [path, reason] : rows) {
    EXPECT_THAT(xfce.set(kFirst, path), HasSubstr(reason)) << path;
  }
  EXPECT_THAT(xfce.set("HDMI-7", xfce.picture("good.png", kBlue)), HasSubstr("no screen HDMI-7"));
  EXPECT_EQ(xfce.dump(), dump);
}

TEST(XfceWallpaper, UnpluggedMonitorGetsItsPictureBackToo) {
  XfceDesk xfce;
  startFromPictures(xfce);
  const std::string dump = xfce.dump();
  const std::string chosen = xfce.picture("chosen.png", kYellow);
  const std::vector<std::string> old{xfce.path(kFirst), xfce.path(kSecond)};
  EXPECT_EQ(xfce.set(kFirst, chosen), kNothing);
  EXPECT_EQ(xfce.set(kSecond, chosen), kNothing);
  EXPECT_TRUE(xfce.shows(1, kYellow));
  xfce.desk().server().setMonitors({xfce.desk().server().monitors().front()});
  ASSERT_TRUE(xfce.desk().until([&] { return xfce.ask({"screens"}) == "1"; }));
  EXPECT_EQ(xfce.set(kSecond, old[1]), kNothing);
  EXPECT_EQ(xfce.set(kFirst, old[0]), kNothing);
  EXPECT_TRUE(xfce.shows(0, kRed));
  EXPECT_EQ(xfce.dump(), dump);
}

TEST(XfceWallpaper, HungSettingsServiceIsWaitedForOnce) {
  XfceDesk xfce;
  startFromPictures(xfce);
  const std::string dump = xfce.dump();
  const std::string chosen = xfce.picture("chosen.png", kYellow);
  ASSERT_NE(xfce.path(kFirst), kNothing);
  const pid_t service = xfce.ownerOf("org.xfce.Xfconf");
  ASSERT_GT(service, 0);
  ::kill(service, SIGSTOP);
  EXPECT_EQ(xfce.path(kFirst), kNothing);
  EXPECT_THAT(xfce.set(kFirst, chosen), HasSubstr("does not answer"));
  EXPECT_TRUE(xfce.isAnsweredAtOnce({"set", kFirst, chosen}));
  ::kill(service, SIGCONT);
  EXPECT_TRUE(xfce.desk().until([&] { return xfce.path(kFirst) != kNothing; }));
  EXPECT_EQ(xfce.dump(), dump);
  EXPECT_EQ(xfce.set(kFirst, chosen), kNothing);
  EXPECT_TRUE(xfce.shows(0, kYellow));
}

TEST(XfceWallpaper, ChangesAreToldOnceAndOnlyToThoseWhoWatch) {
  XfceDesk xfce;
  startFromPictures(xfce);
  const auto changes = [&] { return std::stoi(xfce.ask({"changes"})); };
  EXPECT_NE(xfce.path(kFirst), kNothing);
  EXPECT_EQ(changes(), 0);
  EXPECT_EQ(xfce.ask({"watch"}), "watching");
  xfce.write(XfceDesk::key(kFirst, 0, "last-image"), "string", xfce.picture("b.png", kBlue));
  EXPECT_TRUE(xfce.desk().until([&] { return changes() == 1; }));
  EXPECT_EQ(xfce.set(kFirst, xfce.picture("c.png", kYellow)), kNothing);
  EXPECT_TRUE(xfce.desk().until([&] { return changes() >= 2; }));
  ASSERT_TRUE(xfce.shows(0, kYellow)) << "so that the service has told everybody";
  // The service tells of each workspace's picture, and those that come together are one change.
  constexpr int kWorkspaces = 4;
  EXPECT_LE(changes(), 2 + kWorkspaces);
}

TEST(XfceWallpaper, DesktopThatStartsLaterOrIsReplacedIsFound) {
  WallpaperDesk desk({.windowManager = harness::WindowManager::Xfwm4});
  const std::string bare = desk.path(kFirst);
  const std::string chosen = desk.picture("chosen.png", kYellow);
  for (int round = 0; round < 2; ++round) {
    desk.desk().startIcons(harness::DesktopIcons::Xfdesktop);
    EXPECT_EQ(desk.set(kFirst, chosen), kNothing);
    EXPECT_TRUE(desk.shows(0, kYellow));
    EXPECT_NE(desk.path(kFirst), bare);
  }
}

}  // namespace
}  // namespace wallpaper_test
