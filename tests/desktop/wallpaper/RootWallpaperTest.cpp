#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/wallpaper/WallpaperDesk.h"

namespace wallpaper_test {
namespace {

using testing::StartsWith;

constexpr std::uint32_t kRed = 0xc02020;
constexpr std::uint32_t kBlue = 0x2040c0;
constexpr std::uint32_t kYellow = 0xe0c020;

class BareDesk : public WallpaperDesk {
 public:
  BareDesk() : WallpaperDesk({.windowManager = harness::WindowManager::Openbox}) {}

  [[nodiscard]] std::vector<std::uint32_t> named(const char* property) {
    return desk().x().numbers(desk().x().root(), property);
  }
  [[nodiscard]] harness::Image whole() { return desk().screen().whole(); }
  void swapAndPutBack() {
    const std::string chosen = picture("chosen.png", kYellow);
    const std::vector<std::string> old{path(kFirst), path(kSecond)};
    EXPECT_THAT(old[0], StartsWith("/dev/null/"));
    EXPECT_EQ(set(kFirst, chosen), kNothing);
    EXPECT_TRUE(shows(0, kYellow));
    EXPECT_EQ(set(kSecond, chosen), kNothing);
    EXPECT_TRUE(shows(1, kYellow));
    EXPECT_TRUE(shows(0, kYellow));
    EXPECT_THAT(backdrop(kFirst), StartsWith(chosen));
    EXPECT_EQ(named("_XROOTPMAP_ID").size(), 1U);
    EXPECT_EQ(named("_XROOTPMAP_ID"), named("ESETROOT_PMAP_ID"));
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_EQ(set(i == 0 ? kFirst : kSecond, old[i]), kNothing);
    }
  }
};

TEST(RootWallpaper, ContentThatAnotherProgramLeftComesBack) {
  BareDesk bare;
  (void)bare.run({"hsetroot", "-cover", bare.picture("old.png", kRed), "-add", "#2040c0", "-add",
                  "#c02020", "-gradient", "45"});
  const harness::Image before = bare.whole();
  ASSERT_NE(before.at(300, 300), 0U);
  bare.swapAndPutBack();
  EXPECT_EQ(bare.whole(), before);
  // The next setter frees ours as it frees any other's.
  (void)bare.run({"hsetroot", "-solid", "#2040c0"});
  EXPECT_TRUE(bare.shows(0, kBlue));
}

TEST(RootWallpaper, ColourComesBackAsAColourWhateverTheOldPropertiesSay) {
  for (const bool stale : {false, true}) {
    BareDesk bare;
    if (stale) (void)bare.run({"hsetroot", "-solid", "#c02020"});
    (void)bare.run({"xsetroot", "-solid", "#2040c0"});
    ASSERT_TRUE(bare.shows(0, kBlue));
    const harness::Image before = bare.whole();
    bare.swapAndPutBack();
    EXPECT_EQ(bare.whole(), before);
    EXPECT_TRUE(bare.named("_XROOTPMAP_ID").empty());
  }
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

}  // namespace
}  // namespace wallpaper_test
