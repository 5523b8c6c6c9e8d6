#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "desktop/harness/XDesk.h"

namespace wallpaper_test {

/// As the harness makes them.
inline constexpr const char* kFirst = "VNC-0";
inline constexpr const char* kSecond = "VNC-1";
/// What the probe answers where there is nothing to tell: no path, or no reason to fail.
inline constexpr const char* kNothing = "-";

/// What the probe's interface is on.
enum class Interface {
  X11,
  /// One of which only Qt knows anything: the same two screens, the second one with two pixels a
  /// point each way.
  Other
};

/// A private desktop with a process on it that sets and reads the desktop's pictures.
class WallpaperDesk {
 public:
  explicit WallpaperDesk(const harness::DeskOptions& options, Interface interface = Interface::X11);

  [[nodiscard]] harness::XDesk& desk() { return desk_; }

  [[nodiscard]] std::string path(const std::string& screen) { return ask({"path", screen}); }
  /// The reason of a refusal, or nothing.
  [[nodiscard]] std::string set(const std::string& screen, const std::string& path) {
    return ask({"set", screen, path});
  }
  /// File, number of the style, whether it spans, colour; parted by tabs.
  [[nodiscard]] std::string backdrop(const std::string& screen) {
    return ask({"backdrop", screen});
  }
  /// Any order of the probe. Throws when no answer comes within the harness's patience, which is
  /// less than the 25 seconds that the bus itself waits.
  [[nodiscard]] std::string ask(const std::vector<std::string>& fields);
  /// Several of them, within one turn of the probe's event loop.
  [[nodiscard]] std::vector<std::string> askTogether(
      const std::vector<std::vector<std::string>>& orders);
  /// What the probe wrote on standard error.
  [[nodiscard]] std::string complaints() const { return probe_->errorOutput(); }
  /// Whether that order is answered without a wait: a hundred of them.
  [[nodiscard]] bool isAnsweredAtOnce(const std::vector<std::string>& fields);

  /// A picture of one colour in the desktop's home; the path.
  [[nodiscard]] std::string picture(const std::string& name, std::uint32_t colour) const;
  /// Waits until the middle of a monitor, counted from 0, has that colour, give or take a little.
  [[nodiscard]] bool shows(int monitor, std::uint32_t colour);
  [[nodiscard]] std::uint32_t middleOf(int monitor);

  /// Standard output of a program, which must end well.
  [[nodiscard]] std::string run(const std::vector<std::string>& argv) const;
  /// The process that owns a name on the bus.
  [[nodiscard]] pid_t ownerOf(const std::string& busName);

 private:
  [[nodiscard]] std::string answer();

  harness::XDesk desk_;
  std::filesystem::path fifo_;
  std::unique_ptr<harness::Process> probe_;
};

}  // namespace wallpaper_test
