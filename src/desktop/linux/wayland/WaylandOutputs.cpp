#include "desktop/linux/wayland/WaylandOutputs.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace linux_desktop {
namespace {

// A change arrives at once, but for one at several outputs.
constexpr std::chrono::milliseconds kSettling{50};
constexpr std::uint32_t kOutputVersion = 4;
constexpr std::uint32_t kLogicalVersion = 3;

/// Whether an output with that transform lies on its side.
bool isOnItsSide(int transform) {
  return (transform & WL_OUTPUT_TRANSFORM_90) != 0;
}

std::vector<Monitor> monitorsOf(const WaylandOutputs& outputs) {
  std::vector<Monitor> monitors;
  for (const WaylandOutput* output : outputs.all()) monitors.push_back(output->monitor());
  if (monitors.empty()) monitors.push_back({QStringLiteral("screen"), {0, 0, 1, 1}});
  return monitors;
}

}  // namespace

WaylandOutput::WaylandOutput(std::uint32_t global, WaylandProxy<wl_output> output,
                             zxdg_output_manager_v1* logical, std::function<void()> changed)
    : global_(global), output_(std::move(output)), changed_(std::move(changed)) {
  listen();
  if (logical == nullptr) return;
  logical_.reset(zxdg_output_manager_v1_get_xdg_output(logical, output_.get()));
  listenToLogical();
}

void WaylandOutput::listen() {
  static constexpr auto told = [](void* self) -> Description& {
    return static_cast<WaylandOutput*>(self)->told_;
  };
  static constexpr wl_output_listener kListener{
      [](void* self, wl_output*, int x, int y, int, int, int, const char*, const char*,
         int transform) {
        told(self).place = {x, y};
        told(self).transform = transform;
      },
      [](void* self, wl_output*, std::uint32_t flags, int width, int height, int) {
        if ((flags & WL_OUTPUT_MODE_CURRENT) != 0) told(self).mode = {width, height};
      },
      [](void* self, wl_output*) { static_cast<WaylandOutput*>(self)->described(); },
      [](void* self, wl_output*, int scale) { told(self).scale = scale; },
      [](void* self, wl_output*, const char* name) { told(self).name = QString::fromUtf8(name); },
      [](void*, wl_output*, const char*) {}};
  wl_output_add_listener(output_.get(), &kListener, this);
}

void WaylandOutput::listenToLogical() {
  static constexpr auto told = [](void* self) -> Description& {
    return static_cast<WaylandOutput*>(self)->told_;
  };
  static constexpr zxdg_output_v1_listener kListener{
      [](void* self, zxdg_output_v1*, int x, int y) {
        told(self).logical.moveTopLeft({x, y});
      },
      [](void* self, zxdg_output_v1*, int width, int height) {
        told(self).logical.setSize({width, height});
      },
      // Before version 3 of it, else the output's own says it for both.
      [](void* self, zxdg_output_v1*) { static_cast<WaylandOutput*>(self)->described(); },
      [](void* self, zxdg_output_v1*, const char* name) {
        told(self).name = QString::fromUtf8(name);
      },
      [](void*, zxdg_output_v1*, const char*) {}};
  zxdg_output_v1_add_listener(logical_.get(), &kListener, this);
}

void WaylandOutput::described() {
  // The one that is told first does not know the whole yet.
  if (told_.mode.isEmpty() || (logical_ && told_.logical.isEmpty())) return;
  const QSize pixels = isOnItsSide(told_.transform) ? told_.mode.transposed() : told_.mode;
  const QRect points = logical_ ? told_.logical : QRect(told_.place, pixels / told_.scale);
  Monitor now{told_.name, points, double(pixels.width()) / points.width(), pixels};
  if (now == monitor_) return;
  monitor_ = std::move(now);
  changed_();
}

WaylandOutputs::WaylandOutputs(WaylandConnection& connection)
    : connection_(connection),
      logical_(connection.bindFirst<zxdg_output_manager_v1>(zxdg_output_manager_v1_interface,
                                                            kLogicalVersion)) {
  for (const WaylandGlobal& global : connection.globals()) add(global);
  connect(&connection, &WaylandConnection::globalCame, this, &WaylandOutputs::add);
  connect(&connection, &WaylandConnection::globalWent, this, &WaylandOutputs::remove);
  connection.roundTrip();
}

void WaylandOutputs::add(const WaylandGlobal& global) {
  if (global.interface != wl_output_interface.name) return;
  outputs_.push_back(std::make_unique<WaylandOutput>(
      global.name, connection_.bind<wl_output>(global, wl_output_interface, kOutputVersion),
      logical_.get(), [this] { Q_EMIT changed(); }));
}

void WaylandOutputs::remove(std::uint32_t global) {
  const auto gone = std::ranges::find(outputs_, global, &WaylandOutput::global);
  if (gone == outputs_.end()) return;
  const auto output = std::move(*gone);
  outputs_.erase(gone);
  Q_EMIT goes(*output);
  Q_EMIT changed();
}

std::vector<const WaylandOutput*> WaylandOutputs::all() const {
  std::vector<const WaylandOutput*> described;
  for (const auto& output : outputs_) {
    if (!output->monitor().points.isEmpty()) described.push_back(output.get());
  }
  return described;
}

const WaylandOutput* WaylandOutputs::first(
    const std::function<bool(const WaylandOutput& output)>& fits) const {
  const auto found = std::ranges::find_if(outputs_, [&](const auto& one) { return fits(*one); });
  return found == outputs_.end() ? nullptr : found->get();
}

const WaylandOutput* WaylandOutputs::at(const QPoint& point) const {
  return first([&](const auto& output) { return output.monitor().points.contains(point); });
}

const WaylandOutput* WaylandOutputs::named(const QString& name) const {
  return first([&](const auto& output) { return output.monitor().name == name; });
}

const WaylandOutput* WaylandOutputs::numbered(std::uint32_t global) const {
  return first([&](const auto& output) { return output.global() == global; });
}

WaylandScreens::WaylandScreens(WaylandOutputs& outputs)
    : MonitorScreens([&outputs] { return monitorsOf(outputs); }, kSettling) {
  QObject::connect(&outputs, &WaylandOutputs::changed, &context(), [this] { mayHaveChanged(); });
  readNow();
}

}  // namespace linux_desktop
