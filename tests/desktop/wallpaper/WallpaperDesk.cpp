#include "desktop/wallpaper/WallpaperDesk.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace wallpaper_test {

using harness::Rect;

namespace {

bool alike(std::uint32_t one, std::uint32_t other) {
  constexpr int kLittle = 8;
  for (const int shift : {0, 8, 16}) {
    const auto part = [&](std::uint32_t colour) { return static_cast<int>(colour >> shift & 255); };
    if (std::abs(part(one) - part(other)) > kLittle) return false;
  }
  return true;
}

std::string offscreen(const std::filesystem::path& folder) {
  const std::filesystem::path file = folder / "screens.json";
  std::ofstream(file) << R"({"screens": [
    {"name": "VNC-0", "x": 0, "y": 0, "width": 1280, "height": 720, "dpr": 1},
    {"name": "VNC-1", "x": 1280, "y": 0, "width": 1024, "height": 600, "dpr": 2}]})";
  return "offscreen:configfile=" + file.string();
}

}  // namespace

WallpaperDesk::WallpaperDesk(const harness::DeskOptions& options, Interface interface)
    : desk_(options), fifo_(desk_.home().runtime() / "probe") {
  if (::mkfifo(fifo_.c_str(), 0600) != 0) throw std::runtime_error("no FIFO for the probe");
  const bool isX11 = interface == Interface::X11;
  probe_ = desk_.start({WALLPAPER_PROBE, fifo_},
                       {{"QT_QPA_PLATFORM", isX11 ? "xcb" : offscreen(desk_.home().home())}});
}

std::string WallpaperDesk::ask(const std::vector<std::string>& fields) {
  return askTogether({fields}).front();
}

std::vector<std::string> WallpaperDesk::askTogether(
    const std::vector<std::vector<std::string>>& orders) {
  std::string lines;
  for (const std::vector<std::string>& fields : orders) {
    for (const std::string& field : fields)
      lines += (&field == &fields.front() ? "" : "\t") + field;
    lines += '\n';
  }
  std::ofstream(fifo_) << lines;
  std::vector<std::string> answers;
  while (answers.size() < orders.size()) answers.push_back(answer());
  return answers;
}

std::string WallpaperDesk::answer() {
  const auto line = probe_->waitForLine("^answer\t");
  if (!line) throw std::runtime_error("the probe is silent: " + probe_->errorOutput());
  return line->substr(line->find('\t') + 1);
}

bool WallpaperDesk::isAnsweredAtOnce(const std::vector<std::string>& fields) {
  // They would take five minutes, were each to wait.
  constexpr int kOrders = 100;
  int answers = 0;
  return desk_.until([&] {
    (void)ask(fields);
    return ++answers == kOrders;
  });
}

std::string WallpaperDesk::picture(const std::string& name, std::uint32_t colour) const {
  constexpr std::uint16_t kSide = 64;
  const std::filesystem::path path = desk_.home().home() / name;
  std::filesystem::create_directories(path.parent_path());
  harness::writePng({kSide, kSide, std::vector<std::uint32_t>(std::size_t{kSide} * kSide, colour)},
                    path);
  return path;
}

std::uint32_t WallpaperDesk::middleOf(int monitor) {
  const Rect area = desk_.server().monitors().at(static_cast<std::size_t>(monitor));
  return desk_.screen().pixel(area.x + area.width / 2, area.y + area.height / 2);
}

bool WallpaperDesk::shows(int monitor, std::uint32_t colour) {
  return desk_.until([&] { return alike(middleOf(monitor), colour); });
}

std::string WallpaperDesk::run(const std::vector<std::string>& argv) const {
  const harness::RunResult result = desk_.run(argv);
  EXPECT_TRUE(result.succeeded()) << argv.front() << ": " << result.errorOutput;
  return result.output;
}

pid_t WallpaperDesk::ownerOf(const std::string& busName) {
  const auto reply =
      desk_.bus().call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                       "org.freedesktop.DBus.GetConnectionUnixProcessID", {"string:" + busName});
  if (!reply) throw std::runtime_error("nobody owns " + busName);
  std::istringstream text(*reply);
  std::string type;
  pid_t pid = 0;
  text >> type >> pid;
  return pid;
}

}  // namespace wallpaper_test
