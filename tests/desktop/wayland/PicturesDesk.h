#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "desktop/wayland/ModeDesk.h"

namespace wayland_test {

using harness::Compositor;
using harness::Image;

inline constexpr int kWidth = harness::WaylandDesk::kOutputWidth;
inline constexpr int kHeight = harness::WaylandDesk::kOutputHeight;

/// A desktop whose pictures are swaybg's, started by sway or by the user.
class PicturesDesk : public ModeDesk {
 public:
  explicit PicturesDesk(Compositor compositor) : ModeDesk({.compositor = compositor}) {
    // sway may run as another user, and looks whether that one may read a picture.
    const std::filesystem::path home = desk.home().home();
    for (const auto& folder : {home, home.parent_path()}) {
      std::filesystem::permissions(folder, std::filesystem::perms::others_exec,
                                   std::filesystem::perm_options::add);
    }
  }

  /// With a mode that shows this picture.
  void launchWith(const std::string& chosen) {
    launch("Wallpaper", R"(, "kUserdefaultsSelectedWallpaper": ")" + chosen + "\"");
  }
  [[nodiscard]] std::string saved(const std::string& name, const Image& image) const {
    const std::filesystem::path file = desk.home().home() / name;
    harness::writePng(image, file);
    return file;
  }
  [[nodiscard]] std::string plain(const std::string& name, std::uint32_t colour) const {
    constexpr int kSide = 64;
    return saved(name, {kSide, kSide, std::vector<std::uint32_t>(kSide * kSide, colour)});
  }
  /// Has sway itself show that.
  void configure(const std::string& output, const std::string& background) {
    ASSERT_TRUE(desk.run({"swaymsg", "--", "output", output, "bg", background}).succeeded());
  }
  /// Has a program of the user's show that on all outputs.
  [[nodiscard]] std::unique_ptr<harness::Process> swaybg(const std::string& file) {
    return desk.start({"swaybg", "-o", "*", "-m", "fill", "-i", file});
  }
  /// On the left and on the right output, where no panel stands.
  [[nodiscard]] bool shows(std::uint32_t left, std::uint32_t right) {
    return desk.until([&] {
      return desk.screen().pixel(kWidth / 2, kHeight - 2) == left &&
             desk.screen().pixel(kWidth + kWidth / 2, kHeight - 2) == right;
    });
  }
};

}  // namespace wayland_test
