#include <gtest/gtest.h>

#include <cstdlib>

#include "desktop/wayland/PicturesDesk.h"

using wayland_test::Compositor;
using wayland_test::Image;
using wayland_test::kHeight;
using wayland_test::kWidth;
using wayland_test::PicturesDesk;

namespace {

/// What covers show against what swaybg shows.
class SwaybgLikenessTest : public testing::Test, public PicturesDesk {
 protected:
  SwaybgLikenessTest() : PicturesDesk(Compositor::Sway) {}

  /// How many of a hundred pixels differ by more than a little.
  [[nodiscard]] static double percentApart(const Image& one, const Image& other) {
    std::size_t apart = 0;
    for (std::size_t i = 0; i < one.pixels.size(); ++i) {
      const auto differ = [&](int shift) {
        return std::abs(static_cast<int>(one.pixels[i] >> shift & 255) -
                        static_cast<int>(other.pixels[i] >> shift & 255)) > kLittle;
      };
      if (differ(0) || differ(8) || differ(16)) ++apart;
    }
    return 100.0 * static_cast<double>(apart) / static_cast<double>(one.pixels.size());
  }
  /// Of either output the part below the panel.
  [[nodiscard]] std::vector<Image> shown() const {
    using namespace std::chrono_literals;
    constexpr int kStrip = 150;
    const Image all =
        desk.screen().settled({0, kHeight - kStrip, 2 * kWidth, kStrip}, 400ms, harness::kPatience);
    return {all.part({0, 0, kWidth, kStrip}), all.part({kWidth, 0, kWidth, kStrip})};
  }
  /// The covers, which stay as they are while the program stands still.
  [[nodiscard]] std::vector<Image> covered() {
    toggle();
    const std::string memory = "/proc/" + std::to_string(program->pid()) + "/maps";
    EXPECT_TRUE(desk.until(
        [&] { return harness::textOf(memory).find("calmdeck-picture") != std::string::npos; }));
    (void)shown();
    program->freeze();
    configure("*", "#ff00ff solid_color");
    std::vector<Image> covers = shown();
    program->thaw();
    toggle();
    return covers;
  }
  static constexpr int kLittle = 8;
};

TEST_F(SwaybgLikenessTest, CoversAreDrawnAsSwaybgDraws) {
  launch("DesktopIcons");
  // Of odd sizes, larger and smaller than the output.
  const std::string left = saved("large.png", harness::meadow(2001, 1403));
  const std::string right = saved("small.png", harness::meadow(801, 611));
  for (const std::string mode : {"stretch", "fit", "fill", "center", "tile"}) {
    configure("HEADLESS-1", "'" + left + "' " + mode + " #204060");
    configure("HEADLESS-2", "'" + right + "' " + mode + " #204060");
    const std::vector<Image> theirs = shown();
    const std::vector<Image> ours = covered();
    EXPECT_LE(percentApart(theirs[0], ours[0]), 1) << mode << " of a large one";
    EXPECT_LE(percentApart(theirs[1], ours[1]), 1) << mode << " of a small one";
  }
}

}  // namespace
