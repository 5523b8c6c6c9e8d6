#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "desktop/wallpaper/WallpaperDesk.h"

namespace wallpaper_test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

enum class Second { Picture, SlideShow };

class PlasmaDesk : public WallpaperDesk {
 public:
  explicit PlasmaDesk(Second second = Second::Picture, Interface interface = Interface::X11)
      : WallpaperDesk({.environment = {{"XDG_CURRENT_DESKTOP", "KDE"}}}, interface) {
    std::vector<std::string> shell{PLASMA_STAND_IN, picture("old.png", 0xc02020)};
    if (second == Second::SlideShow) shell.push_back(picture("slide.png", 0x20c020));
    shell_ = desk().start(shell);
    EXPECT_TRUE(shell_->waitForLine("^ready$")) << shell_->errorOutput();
  }

  [[nodiscard]] harness::Process& shell() { return *shell_; }
  /// What the next script that writes was given.
  [[nodiscard]] std::string written() { return shell_->waitForLine("^\\{").value_or("nothing"); }
  /// How many scripts have read, and how many have written.
  [[nodiscard]] std::pair<int, int> scripts() {
    std::istringstream lines(shell_->output());
    std::pair<int, int> count;
    for (std::string line; std::getline(lines, line);) {
      if (line == "read") ++count.first;
      if (line.starts_with('{')) ++count.second;
    }
    return count;
  }
  /// As the user's own settings would, up to where the shell notes it in its file.
  void changeByAnother(const std::string& file) {
    const std::string wanted = R"({"id":9,"plugin":"org.kde.image","image":"file://)" + file;
    EXPECT_TRUE(desk().bus().call("org.kde.plasmashell", "/PlasmaShell",
                                  "org.kde.PlasmaShell.evaluateScript",
                                  {"string:const wanted = " + wanted + "\"};"}));
  }
  void noteInFile() {
    desk().home().writeConfig("plasma-org.kde.plasma.desktop-appletsrc", std::to_string(++notes_));
  }

 private:
  std::unique_ptr<harness::Process> shell_;
  int notes_ = 0;
};

class PlasmaOn : public testing::TestWithParam<Interface> {};

INSTANTIATE_TEST_SUITE_P(An, PlasmaOn, testing::Values(Interface::X11, Interface::Other),
                         [](const auto& row) {
                           return row.param == Interface::X11 ? "XServer" : "UnknownWindowSystem";
                         });

TEST_P(PlasmaOn, EachScreenIsSetAndPutBackByItsPlace) {
  PlasmaDesk plasma(Second::Picture, GetParam());
  const std::string colour = plasma.path(kFirst);
  EXPECT_THAT(colour, StartsWith("/dev/null/"));
  EXPECT_EQ(plasma.backdrop(kFirst), "\t0\t0\t#20a040");
  const std::string picture = plasma.path(kSecond);
  EXPECT_THAT(picture, EndsWith("/old.png"));
  EXPECT_THAT(plasma.backdrop(kSecond), StartsWith(picture + "\t4\t0"));

  const std::string chosen = plasma.picture("a \"b\" %20ä.png", 0xe0c020);
  EXPECT_EQ(plasma.set(kFirst, chosen), kNothing);
  EXPECT_THAT(plasma.written(),
              HasSubstr(R"(/a%20%22b%22%20%2520%C3%A4.png","plugin":"org.kde.image")"));
  EXPECT_EQ(plasma.path(kSecond), picture);
  EXPECT_EQ(plasma.set(kSecond, chosen), kNothing);
  EXPECT_THAT(plasma.written(), StartsWith(R"({"id":9,)"));

  EXPECT_EQ(plasma.set(kFirst, colour), kNothing);
  EXPECT_EQ(plasma.written(), R"({"id":7,"image":"","plugin":"org.kde.color"})");
  EXPECT_EQ(plasma.set(kSecond, picture), kNothing);
  EXPECT_EQ(plasma.written(),
            R"({"id":9,"image":"file://)" + picture + R"(","plugin":"org.kde.image"})");
}

TEST(PlasmaWallpaper, SlideShowGoesOnFromTheSlideThatScriptsDoNotSee) {
  PlasmaDesk plasma(Second::SlideShow);
  const std::string show = plasma.path(kSecond);
  EXPECT_THAT(show, StartsWith("/dev/null/"));
  EXPECT_THAT(plasma.backdrop(kSecond), HasSubstr("/slide.png\t"));
  EXPECT_EQ(plasma.set(kSecond, plasma.picture("chosen.png", 0xe0c020)), kNothing);
  EXPECT_THAT(plasma.written(), HasSubstr(R"(/chosen.png","plugin":"org.kde.image"})"));

  EXPECT_EQ(plasma.set(kSecond, show), kNothing);
  const std::string written = plasma.written();
  EXPECT_THAT(written, HasSubstr(R"(/old.png","plugin":"org.kde.slideshow","slide":"file:///)"));
  EXPECT_THAT(written, EndsWith(R"(/slide.png"})"));
}

TEST(PlasmaWallpaper, OneReadingServesATurnAndNoLonger) {
  PlasmaDesk plasma;
  const std::string chosen = plasma.picture("chosen.png", 0xe0c020);
  const std::string refused = plasma.picture("refused.png", 0xe0c020);
  const std::vector<std::string> answers = plasma.askTogether({{"path", kFirst},
                                                               {"path", kSecond},
                                                               {"set", kFirst, chosen},
                                                               {"set", kSecond, chosen},
                                                               {"path", kFirst},
                                                               {"path", kSecond}});
  EXPECT_THAT(answers, ElementsAre(StartsWith("/dev/null/"), EndsWith("/old.png"), kNothing,
                                   kNothing, chosen, chosen));
  EXPECT_TRUE(plasma.desk().until([&] { return plasma.scripts() == std::pair(1, 2); }));
  // An order that comes at once may find the turn not over yet.
  EXPECT_TRUE(plasma.desk().until(
      [&] { return plasma.path(kFirst) == chosen && plasma.scripts().first > 1; }));

  EXPECT_THAT(
      plasma.askTogether({{"set", kFirst, refused},
                          {"path", kFirst},
                          {"set", kSecond, plasma.picture("other.png", 0x2040c0)},
                          {"path", kSecond},
                          {"path", kFirst}}),
      ElementsAre(HasSubstr("does not take"), chosen, kNothing, EndsWith("/other.png"), chosen));
}

TEST(PlasmaWallpaper, ChangeByAnotherIsToldEvenIfItWasReadBefore) {
  PlasmaDesk plasma;
  ASSERT_NE(plasma.path(kSecond), kNothing);
  EXPECT_EQ(plasma.ask({"watch"}), "watching");
  const auto isTold = [&](const char* changes) {
    return plasma.desk().until([&] { return plasma.ask({"changes"}) == changes; });
  };
  const std::string chosen = plasma.picture("chosen.png", 0xe0c020);
  plasma.changeByAnother(chosen);
  EXPECT_EQ(plasma.path(kSecond), chosen);
  plasma.noteInFile();
  EXPECT_TRUE(isTold("1"));

  EXPECT_EQ(plasma.set(kSecond, plasma.picture("ours.png", 0x2040c0)), kNothing);
  EXPECT_TRUE(isTold("2")) << "our own";
  plasma.noteInFile();
  plasma.changeByAnother(chosen);
  plasma.noteInFile();
  EXPECT_TRUE(isTold("3")) << plasma.ask({"changes"});
}

TEST(PlasmaWallpaper, FrozenShellIsWaitedForOnce) {
  PlasmaDesk plasma;
  ASSERT_NE(plasma.path(kFirst), kNothing);
  plasma.shell().freeze();
  // An order that comes at once may find the turn not over yet.
  EXPECT_TRUE(plasma.desk().until([&] { return plasma.path(kFirst) == kNothing; }));
  const std::string chosen = plasma.picture("chosen.png", 0xe0c020);
  EXPECT_THAT(plasma.set(kSecond, chosen), HasSubstr("does not answer"));
  EXPECT_TRUE(plasma.isAnsweredAtOnce({"set", kSecond, chosen}));
  plasma.shell().thaw();
  EXPECT_TRUE(plasma.desk().until([&] { return plasma.path(kFirst) != kNothing; }));
}

}  // namespace
}  // namespace wallpaper_test
