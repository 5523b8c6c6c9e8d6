#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/wallpaper/WallpaperDesk.h"

namespace wallpaper_test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using namespace std::chrono_literals;

class PlasmaDesk : public WallpaperDesk {
 public:
  PlasmaDesk() : WallpaperDesk({.environment = {{"XDG_CURRENT_DESKTOP", "KDE"}}}) {
    EXPECT_TRUE(shell_->waitForLine("^ready$")) << shell_->errorOutput();
  }

  [[nodiscard]] harness::Process& shell() { return *shell_; }
  /// What the next script that writes was given.
  [[nodiscard]] std::string written() { return shell_->waitForLine("^\\{").value_or("nothing"); }

 private:
  std::unique_ptr<harness::Process> shell_ =
      desk().start({PLASMA_STAND_IN, picture("old.png", 0xc02020)});
};

TEST(PlasmaWallpaper, EachScreenIsSetAndPutBackByItsPlace) {
  PlasmaDesk plasma;
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

TEST(PlasmaWallpaper, FrozenShellCostsHalfASecondOnce) {
  PlasmaDesk plasma;
  ASSERT_NE(plasma.path(kFirst), kNothing);
  plasma.shell().freeze();
  EXPECT_EQ(plasma.path(kFirst), kNothing);
  EXPECT_LT(plasma.took(), 800ms);
  EXPECT_THAT(plasma.set(kSecond, plasma.picture("chosen.png", 0xe0c020)),
              HasSubstr("does not answer"));
  EXPECT_LT(plasma.took(), 200ms);
  plasma.shell().thaw();
  EXPECT_TRUE(plasma.desk().until([&] { return plasma.path(kFirst) != kNothing; }));
}

}  // namespace
}  // namespace wallpaper_test
