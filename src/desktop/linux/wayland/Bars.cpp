#include "desktop/linux/wayland/Bars.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>

namespace linux_desktop {
namespace {

constexpr std::chrono::milliseconds kAnswer{500};
constexpr const char* kKind = "calmdeck-probe";

/// A positioner by which a popup covers the output, wherever its parent is.
WaylandProxy<xdg_positioner> allOver(xdg_wm_base& shell, QSize output) {
  WaylandProxy<xdg_positioner> rules(xdg_wm_base_create_positioner(&shell));
  xdg_positioner_set_size(rules.get(), output.width(), output.height());
  xdg_positioner_set_anchor_rect(rules.get(), 0, 0, 1, 1);
  xdg_positioner_set_anchor(rules.get(), XDG_POSITIONER_ANCHOR_TOP_LEFT);
  xdg_positioner_set_gravity(rules.get(), XDG_POSITIONER_GRAVITY_BOTTOM_RIGHT);
  xdg_positioner_set_constraint_adjustment(
      rules.get(), std::uint32_t{XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_X} |
                       std::uint32_t{XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_Y});
  return rules;
}

/// A popup as large as the output, of which nothing is seen. It is pushed onto the output: as far
/// as its parent stands off the upper left corner.
class Corner {
 public:
  Corner(const LayerShell& shell, xdg_wm_base& base, LayerPlace& parent, QSize output)
      : surface_(wl_compositor_create_surface(shell.compositor.get())),
        role_(xdg_wm_base_get_xdg_surface(&base, surface_.get())),
        popup_(xdg_surface_get_popup(role_.get(), nullptr, allOver(base, output).get())) {
    static constexpr xdg_popup_listener kListener = [] {
      xdg_popup_listener all{};
      all.configure = [](void* self, xdg_popup*, std::int32_t x, std::int32_t y, std::int32_t,
                         std::int32_t) { static_cast<Corner*>(self)->told_ = QPoint(x, y); };
      all.popup_done = [](void*, xdg_popup*) {};
      return all;
    }();
    xdg_popup_add_listener(popup_.get(), &kListener, this);
    parent.adopt(*popup_);
    wl_surface_commit(surface_.get());
  }
  Corner(const Corner&) = delete;
  Corner& operator=(const Corner&) = delete;

  /// The output's, as its parent sees it.
  [[nodiscard]] const std::optional<QPoint>& told() const { return told_; }

 private:
  std::optional<QPoint> told_;
  WaylandProxy<wl_surface> surface_;
  WaylandProxy<xdg_surface> role_;
  WaylandProxy<xdg_popup> popup_;
};

/// Compositors tell nobody where bars are, but give a surface that keeps clear of them less room.
class Probe {
 public:
  /// `base` may be null: where the room begins is not told then.
  Probe(const LayerShell& shell, xdg_wm_base* base, const WaylandOutput& of)
      : output_(of.monitor().points),
        place_(shell, LayerPlace::Layer::Background, LayerPlace::Extent::BesidePanels, kKind, of,
               {[this](QSize given) { room_ = given; }, {}}) {
    if (base != nullptr) corner_.emplace(shell, *base, place_, output_.size());
  }
  Probe(const Probe&) = delete;
  Probe& operator=(const Probe&) = delete;

  [[nodiscard]] bool isTold() const { return !room_.isEmpty() && (!corner_ || corner_->told()); }
  [[nodiscard]] std::vector<DesktopPanel> bars() const;

 private:
  QRect output_;
  QSize room_;
  LayerPlace place_;
  std::optional<Corner> corner_;
};

std::vector<DesktopPanel> Probe::bars() const {
  const QRect all = output_;
  if (!isTold() || room_ == all.size()) return {};
  if (!corner_) return {{.geometry = QRect(all.topLeft(), QSize(all.width(), 1)), .reserved = {}}};
  const QRect room(all.topLeft() - *corner_->told(), room_);
  std::vector<DesktopPanel> bars;
  for (const QRect& strip : {QRect(all.topLeft(), QPoint(all.right(), room.top() - 1)),
                             QRect(QPoint(all.left(), room.bottom() + 1), all.bottomRight()),
                             QRect(all.topLeft(), QPoint(room.left() - 1, all.bottom())),
                             QRect(QPoint(room.right() + 1, all.top()), all.bottomRight())}) {
    if (!strip.isEmpty()) bars.push_back({.geometry = strip, .reserved = strip});
  }
  return bars;
}

}  // namespace

std::vector<DesktopPanel> barsOn(const LayerShell& shell, const WaylandOutputs& outputs) {
  // It has no place there before there is something to see of it.
  const auto base = isKWin(shell.connection)
                        ? nullptr
                        : shell.connection.bindFirst<xdg_wm_base>(xdg_wm_base_interface, 1);
  std::vector<std::unique_ptr<Probe>> probes;
  for (const WaylandOutput* output : outputs.all())
    probes.push_back(std::make_unique<Probe>(shell, base.get(), *output));
  shell.connection.waitFor(
      [&] { return std::ranges::all_of(probes, [](const auto& one) { return one->isTold(); }); },
      kAnswer);
  std::vector<DesktopPanel> bars;
  for (const auto& probe : probes)
    for (const DesktopPanel& bar : probe->bars()) bars.push_back(bar);
  return bars;
}

}  // namespace linux_desktop
