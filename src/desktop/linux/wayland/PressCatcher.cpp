#include "desktop/linux/wayland/PressCatcher.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace linux_desktop {
namespace {

using Layer = LayerSheet::Layer;

constexpr const char* kKind = "calmdeck-catcher";
/// Until it is done without.
constexpr std::chrono::milliseconds kArrival{500};

}  // namespace

PressCatcher::PressCatcher(const LayerShell& shell, WaylandOutputs& outputs, PointerSeat& seat)
    : shell_(shell), outputs_(outputs), seat_(seat), clear_(ShmPicture::clear(*shell.shm)) {
  // First, so that it hears of the pointer that the glass slides under.
  seat_.listen(*shell.compositor, *shell.shm,
               {.pressed =
                    [this](std::uint32_t time) {
                      if (pressed_) pressed_(time);
                    },
                .entered =
                    [this] {
                      if (entered_) entered_();
                    }});
  coverAll();
  QObject::connect(&outputs, &WaylandOutputs::changed, &context_, [this] { coverAll(); });
  QObject::connect(&outputs, &WaylandOutputs::goes, &context_, [this](const WaylandOutput& output) {
    std::erase_if(panes_, [&](const auto& pane) { return &pane->output == &output; });
  });
}

PressCatcher::~PressCatcher() {
  seat_.stop();
}

void PressCatcher::coverAll() {
  if (!clear_) return;
  for (const WaylandOutput* output : outputs_.all()) {
    const bool isCovered =
        std::ranges::any_of(panes_, [output](const auto& pane) { return &pane->output == output; });
    if (!isCovered) panes_.push_back(std::make_unique<Pane>(shell_, *output, clear_));
  }
}

PressCatcher::Pane::Pane(const LayerShell& shell, const WaylandOutput& of,
                         const std::shared_ptr<const ShmPicture>& clear)
    : output(of),
      // What the compositor takes away goes with its output.
      sheet(shell, Layer::Front, kKind, of, clear, {[this] { isThere = true; }, {}}) {}

void PressCatcher::awaitArrival() const {
  shell_.connection.waitFor(
      [this] {
        return std::ranges::all_of(panes_, [](const auto& pane) { return pane->isThere; });
      },
      kArrival);
}

void PressCatcher::comeAnew() {
  for (const auto& pane : panes_) {
    pane->sheet.moveTo(Layer::Panels);
    pane->sheet.moveTo(Layer::Front);
  }
}

std::optional<QPoint> PressCatcher::pointer() const {
  const auto& place = seat_.pointer();
  if (!place) return std::nullopt;
  const auto pane = std::ranges::find(panes_, place->surface,
                                      [](const auto& one) { return one->sheet.surface(); });
  if (pane == panes_.end()) return std::nullopt;
  return (*pane)->output.monitor().points.topLeft() + place->point.toPoint();
}

}  // namespace linux_desktop
