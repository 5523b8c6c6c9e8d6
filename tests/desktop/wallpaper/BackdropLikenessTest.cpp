// The picture as we draw it against the picture as the desktop draws it, per style and monitor.

#include <gtest/gtest.h>

#include <QImage>
#include <algorithm>

#include "desktop/wallpaper/Photograph.h"
#include "desktop/wallpaper/WallpaperDesk.h"

namespace wallpaper_test {
namespace {

using harness::DesktopIcons;

constexpr double kMostPercent = 1;

/// A desktop and how it is told what to show in which style.
struct Desktop {
  const char* name;
  DesktopIcons icons;
  std::vector<const char*> styles;
  /// Before the desktop starts, for those that read it then.
  void (*prepare)(const harness::PrivateHome& home, const std::string& picture,
                  const std::string& style);
  void (*show)(WallpaperDesk& desk, const std::string& picture, const std::string& style);
};

void writePcManFm(const harness::PrivateHome& home, const std::string& picture,
                  const std::string& style) {
  for (const char* number : {"0", "1"}) {
    home.writeConfig(std::string("pcmanfm/default/desktop-items-") + number + ".conf",
                     "[*]\nwallpaper_mode=" + style + "\nwallpaper_common=1\nwallpaper=" + picture +
                         "\ndesktop_bg=#204060\n");
  }
}

void writePcManFmQt(const harness::PrivateHome& home, const std::string& picture,
                    const std::string& style) {
  const auto blank = style.find(' ');
  home.writeConfig("pcmanfm-qt/lxqt/settings.conf",
                   "[Desktop]\nBgColor=#204060\nPerScreenWallpaper=" +
                       std::string(blank == std::string::npos ? "false" : "true") + "\nWallpaper=" +
                       picture + "\nWallpaperMode=" + style.substr(0, blank) + "\n");
}

void nothing(const harness::PrivateHome&, const std::string&, const std::string&) {}
void already(WallpaperDesk&, const std::string&, const std::string&) {}

void showXfce(WallpaperDesk& desk, const std::string& picture, const std::string& style) {
  for (const char* monitor : {kFirst, kSecond}) {
    const std::string folder = std::string("/backdrop/screen0/monitor") + monitor + "/workspace0/";
    const auto write = [&](const std::string& key, const char* type, const std::string& value) {
      (void)desk.run({"xfconf-query", "-c", "xfce4-desktop", "-p", folder + key, "-n", "-t", type,
                      "-s", value});
    };
    write("color-style", "int", "2");
    write("image-style", "int", style);
    write("last-image", "string", picture);
  }
}

void showMate(WallpaperDesk& desk, const std::string& picture, const std::string& style) {
  const auto write = [&](const char* key, const std::string& value) {
    (void)desk.run({"gsettings", "set", "org.mate.background", key, value});
  };
  write("color-shading-type", "'horizontal-gradient'");
  write("primary-color", "'#204060'");
  write("secondary-color", "'#a08040'");
  write("picture-options", "'" + style + "'");
  write("picture-filename", "'" + picture + "'");
}

const Desktop kDesktops[] = {
    {"PcManFm",
     DesktopIcons::Pcmanfm,
     {"stretch", "fit", "center", "tile", "crop", "screen", "color"},
     writePcManFm,
     already},
    {"PcManFmQt",
     DesktopIcons::PcmanfmQt,
     {"stretch", "fit", "center", "tile", "zoom", "none"},
     writePcManFmQt,
     already},
    {"PcManFmQtPerMonitor",
     DesktopIcons::PcmanfmQt,
     {"fit each", "tile each", "zoom each"},
     writePcManFmQt,
     already},
    {"Xfce", DesktopIcons::Xfdesktop, {"1", "2", "3", "4", "5", "6", "0"}, nothing, showXfce},
    {"Mate",
     DesktopIcons::Caja,
     {"wallpaper", "centered", "scaled", "stretched", "spanned"},
     nothing,
     showMate},
};

struct Look {
  const Desktop* desktop;
  const char* style;
};

std::vector<Look> looks() {
  std::vector<Look> all;
  for (const Desktop& desktop : kDesktops) {
    for (const char* style : desktop.styles) all.push_back({&desktop, style});
  }
  return all;
}

std::string nameOf(const testing::TestParamInfo<Look>& row) {
  std::string name = std::string(row.param.desktop->name) + "_" + row.param.style;
  std::ranges::replace(name, ' ', '_');
  return name;
}

class BackdropLikenessTest : public testing::TestWithParam<Look> {
 protected:
  /// Of a hundred pixels; the least that is seen until the desktop has drawn.
  static double apart(WallpaperDesk& desk, int monitor) {
    const std::string drawn = desk.desk().home().home() / "drawn.png";
    const harness::Rect area =
        desk.desk().server().monitors().at(static_cast<std::size_t>(monitor));
    double least = 100;
    desk.desk().until([&] {
      if (desk.ask({"render", monitor == 0 ? kFirst : kSecond, drawn}) != "saved") return false;
      const QImage ours(QString::fromStdString(drawn));
      least = std::min(least, percentApart(ours, desk.desk().screen().area(area)));
      return least <= kMostPercent;
    });
    return least;
  }
};

TEST_P(BackdropLikenessTest, OnePixelOfAHundredAtMostIsAnother) {
  const auto& [desktop, style] = GetParam();
  WallpaperDesk desk({.windowManager = harness::WindowManager::Openbox});
  const harness::PrivateHome& home = desk.desk().home();
  const std::string picture = home.home() / "photograph.png";
  ASSERT_TRUE(photograph(1531, 977).save(QString::fromStdString(picture)));
  desktop->prepare(home, picture, style);
  desk.desk().startIcons(desktop->icons);
  desktop->show(desk, picture, style);
  for (const int monitor : {0, 1}) {
    const double percent = apart(desk, monitor);
    EXPECT_LE(percent, kMostPercent) << monitor;
    RecordProperty("monitor" + std::to_string(monitor), std::to_string(percent));
  }
}

INSTANTIATE_TEST_SUITE_P(On, BackdropLikenessTest, testing::ValuesIn(looks()), nameOf);

}  // namespace
}  // namespace wallpaper_test
