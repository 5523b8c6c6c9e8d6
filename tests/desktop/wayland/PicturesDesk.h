#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
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
  explicit PicturesDesk(Compositor compositor)
      : ModeDesk({.compositor = compositor,
                  .configuration = compositor == Compositor::Sway ? "include pictures" : ""}) {}

  /// With a mode that shows this picture.
  void launchWith(const std::string& chosen) {
    launch("Wallpaper", harness::chosenPicture(chosen));
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
  /// Has sway's configuration have these lines, too.
  void configureForGood(const std::string& lines) {
    desk.home().writeConfig("sway/pictures", lines + "\n");
    desk.reload();
  }
  /// What the kernel tells of a process, which may end meanwhile.
  [[nodiscard]] static std::string told(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
  }
  /// What sway's own swaybg was told, the process by its number; empty while there is none.
  [[nodiscard]] std::pair<pid_t, std::string> swaysSwaybg() const {
    const std::string folder = "XDG_RUNTIME_DIR=" + desk.home().runtime().string();
    for (const auto& process : std::filesystem::directory_iterator("/proc")) {
      const std::string words = told(process.path() / "cmdline");
      if (!words.starts_with("swaybg")) continue;
      const std::string environment = told(process.path() / "environ");
      if (environment.find(folder) == std::string::npos) continue;
      if (environment.find("WAYLAND_SOCKET=") == std::string::npos) continue;
      return {std::stoi(process.path().filename()), words};
    }
    return {};
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
