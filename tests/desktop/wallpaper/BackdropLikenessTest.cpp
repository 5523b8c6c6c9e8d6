// The picture as we draw it against the picture as the desktop draws it, per style and monitor.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QImage>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/wallpaper/DesktopFacts.h"
#include "desktop/linux/wallpaper/WallpaperPictures.h"

namespace wallpaper_test {
namespace {

using harness::DesktopIcons;
using harness::XDesk;

constexpr double kMostPercent = 1;
constexpr const char* kItsEnd = "BadDrawable (invalid Pixmap or Window parameter)";

/// The private desktop of this process, whose surroundings are the desktop's from here on: Qt keeps
/// its session bus.
XDesk& sharedDesk() {
  static XDesk desk({.windowManager = harness::WindowManager::Openbox});
  // Which GLib raises when the session bus ends.
  ::signal(SIGTERM, [](int) {});
  for (const auto& [name, value] : desk.environment()) ::setenv(name.c_str(), value.c_str(), 1);
  return desk;
}

/// As the window system tells them.
class Facts final : public linux_desktop::DesktopFacts {
 public:
  Facts() : DesktopFacts([] { return monitorsOf(sharedDesk()); }) {}

  linux_desktop::DesktopWindow desktopWindow() override {
    const auto icons = sharedDesk().windows().findViewable(
        [](const harness::WindowInfo& window) { return window.type == "DESKTOP"; });
    if (!icons) return {};
    const auto pid = sharedDesk().x().number(icons->id, "_NET_WM_PID");
    return {icons->id, QString::fromStdString(icons->className), pid.value_or(0)};
  }
  std::vector<QString> outputsInUse() override {
    std::vector<QString> names;
    for (const linux_desktop::Monitor& monitor : monitors()) names.push_back(monitor.name);
    return names;
  }

 private:
  static std::vector<linux_desktop::Monitor> monitorsOf(XDesk& desk) {
    std::vector<linux_desktop::Monitor> monitors;
    for (const harness::Rect& area : desk.server().monitors()) {
      monitors.push_back({QStringLiteral("VNC-%1").arg(monitors.size()),
                          {area.x, area.y, area.width, area.height}});
    }
    return monitors;
  }
};

/// Soft, with sharp lines. Its size is no multiple of any monitor's.
QImage photograph() {
  QImage image(1531, 977, QImage::Format_RGB32);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const int line = (x + y) % 97 == 0 || (x - 2 * y) % 131 == 0 ? 60 : 0;
      image.setPixel(x, y, qRgb(40 + x / 10 + line, 40 + y / 7 + line, 140 - x / 20 + line));
    }
  }
  return image;
}

/// How many of a hundred pixels of two pictures of one size differ by more than 8 of 255 in any
/// colour; 100 for pictures of different sizes.
double percentApart(const QImage& picture, const harness::Image& screen) {
  constexpr int kMost = 8;
  if (picture.width() != screen.width || picture.height() != screen.height) return 100;
  std::size_t apart = 0;
  for (int y = 0; y < screen.height; ++y) {
    for (int x = 0; x < screen.width; ++x) {
      const QRgb one = picture.pixel(x, y);
      const QRgb other = screen.at(x, y);
      const bool differs = std::abs(qRed(one) - qRed(other)) > kMost ||
                           std::abs(qGreen(one) - qGreen(other)) > kMost ||
                           std::abs(qBlue(one) - qBlue(other)) > kMost;
      if (differs) ++apart;
    }
  }
  return 100.0 * static_cast<double>(apart) / static_cast<double>(screen.pixels.size());
}

/// A desktop and its styles.
struct Desktop {
  const char* name;
  std::vector<const char*> styles;
  DesktopIcons icons;
  bool onEach = false;
};

const Desktop kDesktops[] = {
    {"PcManFm",
     {"stretch", "fit", "center", "tile", "crop", "screen", "color"},
     DesktopIcons::Pcmanfm},
    {"PcManFmQt", {"stretch", "fit", "center", "tile", "zoom", "none"}, DesktopIcons::PcmanfmQt},
    {"PcManFmQtPerMonitor", {"fit", "tile", "zoom"}, DesktopIcons::PcmanfmQt, true},
    {"Xfce", {"1", "2", "3", "4", "5", "6", "0"}, DesktopIcons::Xfdesktop},
    {"Mate", {"wallpaper", "centered", "scaled", "stretched", "spanned"}, DesktopIcons::Caja},
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
  return std::string(row.param.desktop->name) + "_" + row.param.style;
}

class BackdropLikenessTest : public testing::TestWithParam<Look> {
 protected:
  BackdropLikenessTest() {
    linux_desktop::BusPeer::limitOperationsTo(3000);  // tests run side by side
    linux_desktop::WallpaperPictures::waitForPictures(3000);
  }

  /// Whether the desktop outlives its own start. pcmanfm 1.4 does not when it is to lay tiles: it
  /// frees their pixmap before it shows it.
  bool starts(DesktopIcons icons) {
    std::string said;
    try {
      desk.startIcons(icons);
      said = desk.icons().errorOutput();
    } catch (const std::runtime_error& failure) {
      said = failure.what();
      if (said.find(kItsEnd) == std::string::npos) throw;
    }
    return said.find(kItsEnd) == std::string::npos;
  }

  /// Of a hundred pixels; the least that is seen until the desktop has drawn.
  double apart(const linux_desktop::Monitor& monitor) {
    const QRect area = monitor.pixels();
    double least = 100;
    desk.until([&] {
      QCoreApplication::processEvents();
      const auto backdrop = pictures.backdrop(monitor);
      const auto ours = backdrop ? pictures.render(*backdrop, monitor) : std::nullopt;
      if (!ours) return false;
      const harness::Image seen =
          desk.screen().area({area.x(), area.y(), area.width(), area.height()});
      least = std::min(least, percentApart(*ours, seen));
      return least <= kMostPercent;
    });
    return least;
  }

  XDesk& desk = sharedDesk();
  Facts facts;

 private:
  int argc_ = 0;
  QCoreApplication application_{argc_, nullptr};

 protected:
  linux_desktop::WallpaperPictures pictures{facts};
};

TEST_P(BackdropLikenessTest, OnePixelOfAHundredAtMostIsAnother) {
  const auto& [desktop, style] = GetParam();
  const std::string picture = desk.home().home() / "photograph.png";
  ASSERT_TRUE(photograph().save(QString::fromStdString(picture)));
  const harness::MonitorBackdrop backdrop{.picture = picture,
                                          .colour = "#204060",
                                          .style = style,
                                          .isShaded = true,
                                          .onEach = desktop->onEach};
  // One that ends writes its settings down.
  desk.startIcons(DesktopIcons::None);
  harness::configureIcons(desk, desktop->icons, {backdrop, backdrop});
  if (!starts(desktop->icons)) GTEST_SKIP() << "it ends by itself: " << kItsEnd;
  for (const linux_desktop::Monitor& monitor : facts.monitors()) {
    const double percent = apart(monitor);
    EXPECT_LE(percent, kMostPercent) << monitor.name.toStdString();
    RecordProperty(monitor.name.toStdString(), std::to_string(percent));
  }
}

INSTANTIATE_TEST_SUITE_P(On, BackdropLikenessTest, testing::ValuesIn(looks()), nameOf);

}  // namespace
}  // namespace wallpaper_test
