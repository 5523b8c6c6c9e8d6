#include "desktop/wallpaper/WallpaperDesk.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sstream>
#include <stdexcept>

namespace wallpaper_test {

namespace {

harness::WindowManager managerOf(DesktopIcons icons) {
  switch (icons) {
    case DesktopIcons::Xfdesktop:
      return harness::WindowManager::Xfwm4;
    case DesktopIcons::Caja:
      return harness::WindowManager::Marco;
    default:
      return harness::WindowManager::Openbox;
  }
}

}  // namespace

WallpaperDesk::WallpaperDesk(DesktopIcons icons, harness::DeskOptions options,
                             const std::string& chosen)
    : desk_([&] {
        options.windowManager = managerOf(icons);
        return options;
      }()),
      icons_(icons),
      chosen_(picture(chosen, kYellow)) {}

void WallpaperDesk::swap() {
  toggle();
  const int count = static_cast<int>(desk_.server().monitors().size());
  for (int monitor = 0; monitor < count; ++monitor)
    EXPECT_TRUE(shows(monitor, kYellow)) << monitor << program_->printed();
}

bool WallpaperDesk::shows(int monitor, std::uint32_t colour) {
  const Rect area = desk_.server().monitors().at(static_cast<std::size_t>(monitor));
  return desk_.until(
      [&] { return harness::alike(desk_.screen().pixel(area.centreX(), area.centreY()), colour); });
}

std::vector<Image> WallpaperDesk::monitors() {
  const Image whole = desk_.settled();
  std::vector<Image> images;
  for (const Rect& monitor : desk_.server().monitors()) images.push_back(whole.part(monitor));
  return images;
}

std::string WallpaperDesk::run(const std::vector<std::string>& argv) const {
  const harness::RunResult result = desk_.run(argv);
  EXPECT_TRUE(result.succeeded()) << argv.front() << ": " << result.errorOutput;
  return result.output;
}

void WallpaperDesk::hold(const std::string& busName, bool hung) {
  const auto reply =
      desk_.bus().call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                       "org.freedesktop.DBus.GetConnectionUnixProcessID", {"string:" + busName});
  if (!reply) throw std::runtime_error("nobody owns " + busName);
  std::istringstream text(*reply);
  std::string type;
  pid_t pid = 0;
  text >> type >> pid;
  ::kill(pid, hung ? SIGSTOP : SIGCONT);
}

}  // namespace wallpaper_test
