#include "desktop/linux/wallpaper/WallpaperPictures.h"

#include <algorithm>
#include <utility>

#include "desktop/linux/wallpaper/BackdropRenderer.h"
#include "desktop/linux/wallpaper/PictureCheck.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;
using platform::port::ScreenId;

// Below a file that is not a folder, so that no picture can ever have such a path.
constexpr const char* kReservedFolder = "/dev/null/desktop-picture/";

bool isReserved(const std::string& path) {
  return path.starts_with(kReservedFolder);
}

}  // namespace

WallpaperPictures::WallpaperPictures(std::function<std::vector<Monitor>()> monitors, XEvents* x11)
    : monitors_(std::move(monitors)), choice_(monitors_, x11) {
  gathering_.setSingleShot(true);
  gathering_.setInterval(0);
  QObject::connect(&gathering_, &QTimer::timeout, &gathering_, [this] {
    if (changed_) changed_();
  });
}

std::optional<Monitor> WallpaperPictures::monitorNamed(const ScreenId& screen) const {
  const std::vector<Monitor> monitors = monitors_();
  const auto found = std::ranges::find(monitors, QString::fromStdString(screen), &Monitor::name);
  return found == monitors.end() ? std::nullopt : std::optional(*found);
}

std::optional<std::string> WallpaperPictures::path(const ScreenId& screen) const {
  const auto monitor = monitorNamed(screen);
  const auto [row, adapter] = choice_.current();
  if (!monitor || adapter == nullptr) return std::nullopt;
  auto state = adapter->state(*monitor);
  if (!state) return std::nullopt;
  std::string path = state->file.isEmpty() ? kReservedFolder + screen : state->file.toStdString();
  told_.insert_or_assign(screen, Told{path, *monitor, row, std::move(state->kept), {}});
  return path;
}

std::optional<Dictionary> WallpaperPictures::options(const ScreenId& screen) const {
  const auto monitor = monitorNamed(screen);
  WallpaperAdapter* adapter = choice_.current().adapter;
  if (!monitor || adapter == nullptr) return std::nullopt;
  return adapter->options(*monitor);
}

std::optional<std::string> WallpaperPictures::set(const std::string& path, const ScreenId& screen,
                                                  const Dictionary& options) {
  const auto told = told_.find(screen);
  const bool isTold = told != told_.end() && told->second.path == path;
  auto reason = isTold ? putBack(told->second, options) : show(path, screen, options);
  if (!reason && changed_) gathering_.start();
  return reason;
}

std::optional<std::string> WallpaperPictures::putBack(const Told& told, const Dictionary& options) {
  const auto [row, adapter] = choice_.current();
  if (adapter == nullptr || row != told.desktop) {
    if (!isReserved(told.path)) return show(told.path, told.monitor.name.toStdString(), options);
    return std::string(told.desktop->name) + " no longer draws the desktop.";
  }
  Dictionary state = told.state;
  for (const auto& [key, value] : options) {
    const auto ours = told.changed.find(key);
    if (ours == told.changed.end() || ours->second != value) state.insert_or_assign(key, value);
  }
  return adapter->restore(told.monitor, state);
}

std::optional<std::string> WallpaperPictures::show(const std::string& path, const ScreenId& screen,
                                                   const Dictionary& options) {
  const auto monitor = monitorNamed(screen);
  if (!monitor) return "There is no screen " + screen + ".";
  WallpaperAdapter* adapter = choice_.current().adapter;
  if (adapter == nullptr) return "Nobody is known here whose picture could be set.";
  const QString file = QString::fromStdString(path);
  if (auto fault = pictureFault(file)) return fault;
  if (auto reason = adapter->show(*monitor, file, options)) return reason;
  const auto told = told_.find(screen);
  if (told == told_.end()) return std::nullopt;
  for (const auto& [key, value] : adapter->options(*monitor).value_or(Dictionary())) {
    const auto given = options.find(key);
    if (given == options.end() || given->second != value)
      told->second.changed.insert_or_assign(key, value);
  }
  return std::nullopt;
}

std::optional<Backdrop> WallpaperPictures::backdrop(const Monitor& monitor) {
  WallpaperAdapter* adapter = choice_.current().adapter;
  return adapter == nullptr ? std::nullopt : adapter->backdrop(monitor);
}

QImage WallpaperPictures::render(const Backdrop& backdrop, const Monitor& monitor) {
  BackdropLayout layout;
  for (const Monitor& each : monitors_()) {
    layout.desktop |= each.pixels;
    layout.lastMonitor = each.pixels.size();
  }
  if (const WallpaperAdapter* adapter = choice_.current().adapter) {
    layout.tilesFromDesktopOrigin = adapter->tilesFromDesktopOrigin();
    layout.spansByZooming = adapter->spansByZooming();
    layout.manner = adapter->manner();
  }
  return renderBackdrop(backdrop, monitor, layout);
}

void WallpaperPictures::setChanged(std::function<void()> changed) {
  changed_ = std::move(changed);
  if (!changed_) {
    gathering_.stop();
    choice_.setChanged({});
  } else {
    choice_.setChanged([this] { gathering_.start(); });
  }
}

}  // namespace linux_desktop
