#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <sstream>

#include "desktop/wallpaper/WallpaperDesk.h"

namespace wallpaper_test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::uint32_t kRed = 0xc02020;
constexpr std::uint32_t kGreen = 0x20a040;
constexpr std::uint32_t kYellow = 0xe0c020;

class MateDesk : public WallpaperDesk {
 public:
  explicit MateDesk(const harness::Environment& environment = {})
      : WallpaperDesk({.windowManager = harness::WindowManager::Marco,
                       .icons = harness::DesktopIcons::Caja,
                       .environment = environment}) {}

  void write(const std::string& key, const std::string& value) const {
    (void)run({"gsettings", "set", "org.mate.background", key, value});
  }
  [[nodiscard]] std::string value(const std::string& key) const {
    return run({"gsettings", "get", "org.mate.background", key});
  }
  /// What the user has set, without the defaults.
  [[nodiscard]] std::string dump() const { return run({"dconf", "dump", "/org/mate/"}); }
};

struct Start {
  const char* name;
  void (*prepare)(MateDesk& mate);
  /// What the desktop shows then.
  std::uint32_t colour;

  friend std::ostream& operator<<(std::ostream& stream, const Start& start) {
    return stream << start.name;
  }
};

void startFromPicture(MateDesk& mate) {
  mate.write("picture-filename", mate.picture("one.png", kRed));
  mate.write("picture-options", "scaled");
  mate.write("primary-color", "#20a040");
}

void startFromColour(MateDesk& mate) {
  mate.write("picture-filename", "");
  mate.write("color-shading-type", "solid");
  mate.write("primary-color", "#20a040");
}

void startFromSlideShow(MateDesk& mate) {
  const std::string list = mate.desk().home().home() / "show.xml";
  std::ofstream(list) << "<background><static><duration>9999</duration><file>"
                      << mate.picture("one.png", kRed) << "</file></static></background>";
  mate.write("picture-filename", list);
  mate.write("picture-options", "zoom");
}

class MateWallpaperTest : public testing::TestWithParam<Start> {};

TEST_P(MateWallpaperTest, WholeStateComesBack) {
  MateDesk mate;
  GetParam().prepare(mate);
  ASSERT_TRUE(mate.shows(0, GetParam().colour));
  const std::string chosen = mate.picture("chosen.png", kYellow);
  const std::string dump = mate.dump();
  const std::vector<std::string> old{mate.path(kFirst), mate.path(kSecond)};

  EXPECT_EQ(mate.set(kFirst, chosen), kNothing);
  EXPECT_EQ(mate.set(kSecond, chosen), kNothing);
  EXPECT_EQ(mate.value("picture-filename"), "'" + chosen + "'\n");
  EXPECT_TRUE(mate.shows(0, kYellow));
  EXPECT_TRUE(mate.shows(1, kYellow));

  EXPECT_EQ(mate.set(kFirst, old[0]), kNothing);
  EXPECT_EQ(mate.set(kSecond, old[1]), kNothing);
  EXPECT_EQ(mate.dump(), dump);
  EXPECT_TRUE(mate.shows(0, GetParam().colour));
}

INSTANTIATE_TEST_SUITE_P(From, MateWallpaperTest,
                         testing::Values(Start{"Picture", startFromPicture, kRed},
                                         Start{"Colour", startFromColour, kGreen},
                                         Start{"SlideShow", startFromSlideShow, kRed}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(MateWallpaper, UnsetKeysBecomeUnsetAgainAndFileNamesAreKeptToTheByte) {
  MateDesk mate;
  const std::string dump = mate.dump();
  const std::string untouched = mate.path(kFirst);
  for (const char* name : {"with blank.png", "per%20cent.png", "quo'te\".png", "ä山.png"}) {
    const std::string path = mate.picture(name, kYellow);
    EXPECT_EQ(mate.set(kFirst, path), kNothing);
    EXPECT_EQ(mate.path(kSecond), path);
  }
  EXPECT_TRUE(mate.shows(0, kYellow));
  EXPECT_THAT(mate.set(kFirst, "/missing.png"), HasSubstr("does not exist"));
  EXPECT_THAT(mate.backdrop(kFirst), StartsWith(mate.picture("ä山.png", kYellow)));
  EXPECT_EQ(mate.set(kFirst, untouched), kNothing);
  EXPECT_EQ(mate.dump(), dump);
}

TEST(MateWallpaper, ChangeByAnybodyIsTold) {
  MateDesk mate;
  startFromPicture(mate);
  EXPECT_THAT(mate.path(kFirst), EndsWith("/one.png"));
  EXPECT_EQ(mate.ask({"watch"}), "watching");
  mate.write("picture-filename", mate.picture("two.png", kGreen));
  EXPECT_TRUE(mate.desk().until([&] { return std::stoi(mate.ask({"changes"})) >= 1; }));
  EXPECT_THAT(mate.path(kFirst), EndsWith("/two.png"));
}

TEST(MateWallpaper, HungSettingsServiceIsNotWaitedForAndNothingChanges) {
  MateDesk mate;
  startFromPicture(mate);
  const std::string dump = mate.dump();
  const std::string old = mate.path(kFirst);
  const pid_t service = mate.ownerOf("ca.desrt.dconf");
  ::kill(service, SIGSTOP);
  EXPECT_THAT(mate.set(kFirst, mate.picture("chosen.png", kYellow)), HasSubstr("does not answer"));
  ::kill(service, SIGCONT);
  EXPECT_TRUE(mate.desk().until([&] { return mate.dump() == dump; }));
  EXPECT_EQ(mate.path(kFirst), old);
}

TEST(MateWallpaper, SettingsThatReachNobodyAreNotSet) {
  MateDesk mate(harness::Environment{{"GSETTINGS_BACKEND", "memory"}});
  EXPECT_EQ(mate.path(kFirst), kNothing);
  EXPECT_NE(mate.set(kFirst, mate.picture("chosen.png", kYellow)), kNothing);
}

}  // namespace
}  // namespace wallpaper_test
