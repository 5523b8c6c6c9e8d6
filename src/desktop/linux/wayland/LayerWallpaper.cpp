#include "desktop/linux/wayland/LayerWallpaper.h"

#include <chrono>
#include <utility>

#include "desktop/linux/wallpaper/BackdropRenderer.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

/// A new output is told to all programs at once, and the last to put a picture there is in front.
constexpr std::chrono::seconds kAfterOthers{1};

constexpr const char* kKind = "wallpaper";
constexpr const char* kFile = "file";
constexpr const char* kRefused = "The compositor does not take the picture.";

}  // namespace

LayerWallpaper::LayerWallpaper(const LayerShell& shell, const WaylandOutputs& outputs,
                               const MonitorScreens& screens)
    : shell_(shell),
      outputs_(outputs),
      screens_(screens),
      settling_(kAfterOthers, [this] { outputsChanged(); }) {
  QObject::connect(&outputs, &WaylandOutputs::changed, &settling_, [this] {
    if (!shown_.empty()) settling_.start();
  });
  QObject::connect(&outputs, &WaylandOutputs::goes, &settling_, [this](const WaylandOutput& gone) {
    for (auto& [name, shown] : shown_) {
      if (shown.place == gone.global()) shown.sheet.reset();
    }
  });
}

std::optional<Backdrop> LayerWallpaper::backdrop(const Monitor& monitor) {
  const auto ours = shown_.find(monitor.name);
  if (ours != shown_.end()) return ours->second.backdrop;
  const auto running = SwaybgTable::on({monitor.name});
  return running ? std::optional(running->told.backdrop()) : std::nullopt;
}

std::optional<WallpaperState> LayerWallpaper::state(const Monitor& monitor) {
  const QString file = backdrop(monitor).value_or(Backdrop()).file;
  Dictionary kept;
  if (shown_.contains(monitor.name)) kept.emplace(kFile, file.toStdString());
  return WallpaperState{std::move(kept), file};
}

Fault LayerWallpaper::show(const Monitor& monitor, const QString& file,
                           const Dictionary& /*options*/) {
  Backdrop wanted = backdrop(monitor).value_or(Backdrop());
  if (wanted.style == BackdropStyle::None) wanted.style = BackdropStyle::Zoomed;
  wanted.file = file;
  return put(monitor.name, wanted);
}

Fault LayerWallpaper::restore(const Monitor& monitor, const Dictionary& kept) {
  if (const auto file = platform::valueOf<std::string>(kept, kFile))
    return show(monitor, QString::fromStdString(*file), {});
  shown_.erase(monitor.name);
  return std::nullopt;
}

Fault LayerWallpaper::put(const QString& output, const Backdrop& backdrop) {
  const WaylandOutput* where = shell_.connection.isLost() ? nullptr : outputs_.named(output);
  if (where == nullptr) return kRefused;
  Shown now{backdrop, draw(backdrop, where->monitor())};
  if (!now.picture) return kRefused;
  Shown& shown = shown_[output];
  now.sheet = std::move(shown.sheet);
  now.place = shown.place;
  shown = std::move(now);
  putUp(shown, *where);
  return std::nullopt;
}

std::shared_ptr<const ShmPicture> LayerWallpaper::draw(const Backdrop& backdrop,
                                                       const Monitor& monitor) const {
  BackdropLayout layout;
  layout.manner = manner();
  for (const Monitor& each : screens_.monitors()) layout.desktop |= each.pixels();
  return ShmPicture::make(*shell_.shm, renderBackdrop(backdrop, monitor, layout));
}

void LayerWallpaper::putUp(Shown& shown, const WaylandOutput& output) {
  if (shown.sheet) return shown.sheet->setPicture(shown.picture);
  shown.place = output.global();
  shown.sheet =
      std::make_unique<LayerSheet>(shell_, layer_, kKind, output, shown.picture,
                                   LayerSheet::Client{{}, [&shown] { shown.sheet.reset(); }});
}

void LayerWallpaper::outputsChanged() {
  if (shell_.connection.isLost()) return;
  for (auto& [name, shown] : shown_) {
    const WaylandOutput* output = outputs_.named(name);
    if (output == nullptr) continue;
    const bool fits = shown.picture->size() == output->monitor().pixels().size();
    if (fits && shown.sheet) continue;
    if (!fits) {
      if (auto picture = draw(shown.backdrop, output->monitor()))
        shown.picture = std::move(picture);
    }
    putUp(shown, *output);
  }
}

}  // namespace linux_desktop
