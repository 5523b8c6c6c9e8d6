// The desktop's pictures in a process of its own, told line by line through a FIFO what to do: the
// session bus and the settings' store are one a process, and each test has its own. The fields of
// an order are parted by tabs; its answer is one line, which begins with "answer" and a tab.

#include <QGuiApplication>
#include <algorithm>
#include <sstream>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/wallpaper/WallpaperPictures.h"
#include "desktop/linux/windowsystem/MonitorScreens.h"
#include "desktop/linux/x11/X11WindowSystem.h"
#include "desktop/probe/OrderFifo.h"
#include "platform/foundation/Value.h"

namespace {

using linux_desktop::Backdrop;
using linux_desktop::DesktopFacts;
using linux_desktop::WallpaperPictures;
using Fields = std::vector<std::string>;

struct Desk {
  std::unique_ptr<linux_desktop::X11WindowSystem> x11 = linux_desktop::X11WindowSystem::open();
  linux_desktop::QtScreens screens;
  DesktopFacts plain{[this] { return screens.monitors(); }};
  DesktopFacts& facts = x11 ? *x11->desktopFacts() : plain;
  WallpaperPictures pictures{facts};
  int changes = 0;

  [[nodiscard]] linux_desktop::Monitor monitorNamed(const std::string& name) const {
    const auto monitors = facts.monitors();
    return *std::ranges::find(monitors, QString::fromStdString(name),
                              &linux_desktop::Monitor::name);
  }
};

std::string told(const std::optional<std::string>& text) {
  return text.value_or("-");
}

std::string describe(const Backdrop& backdrop) {
  std::ostringstream line;
  line << backdrop.file.toStdString() << '\t' << static_cast<int>(backdrop.style) << '\t'
       << backdrop.spansMonitors << '\t' << backdrop.primary.name().toStdString();
  return line.str();
}

std::string answer(Desk& desk, const Fields& fields) {
  const std::string& order = fields.at(0);
  if (order == "path") return told(desk.pictures.path(fields.at(1)));
  if (order == "set") {
    const auto options = desk.pictures.options(fields.at(1)).value_or(platform::Dictionary{});
    return told(desk.pictures.set(fields.at(2), fields.at(1), options));
  }
  if (order == "backdrop") {
    const auto monitor = desk.monitorNamed(fields.at(1));
    const auto backdrop = desk.pictures.backdrop(monitor);
    return backdrop ? describe(*backdrop) : "-";
  }
  if (order == "render") {
    const auto monitor = desk.monitorNamed(fields.at(1));
    const auto backdrop = desk.pictures.backdrop(monitor);
    if (!backdrop) return "-";
    const auto image = desk.pictures.render(*backdrop, monitor);
    if (!image) return "late";
    return image->save(QString::fromStdString(fields.at(2))) ? "saved" : "not saved";
  }
  if (order == "patience") {
    WallpaperPictures::waitForPictures(std::stoi(fields.at(1)));
    return "-";
  }
  if (order == "screens") return std::to_string(desk.facts.monitors().size());
  if (order == "watch") {
    desk.pictures.setChanged([&desk] { ++desk.changes; });
    return "watching";
  }
  if (order == "changes") return std::to_string(desk.changes);
  return "unknown order";
}

void serve(Desk& desk, const std::string& order) {
  std::istringstream parts(order);
  Fields fields;
  for (std::string field; std::getline(parts, field, '\t');) fields.push_back(field);
  probe::say("answer\t" + answer(desk, fields));
}

}  // namespace

int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  constexpr int kPatience = 3000;  // tests run side by side
  linux_desktop::BusPeer::limitOperationsTo(kPatience);
  WallpaperPictures::waitForPictures(kPatience);
  Desk desk;
  const probe::OrderFifo orders(argv[1], [&](const std::string& order) { serve(desk, order); });
  return QGuiApplication::exec();
}
