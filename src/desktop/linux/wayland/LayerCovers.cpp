#include "desktop/linux/wayland/LayerCovers.h"

#include <QDBusConnection>
#include <chrono>
#include <utility>

namespace linux_desktop {
namespace {

/// From its name on the bus to its windows, of which it says nothing.
constexpr std::chrono::seconds kPlasmaStart{10};

}  // namespace

LayerCover::LayerCover(platform::NSWindow& window, LayerCovers& covers)
    : CoverPeer(window), covers_(covers) {}

LayerCover::~LayerCover() {
  hide();
}

const WaylandOutput* LayerCover::output() const {
  if (covers_.shell_.connection.isLost()) return nullptr;
  return covers_.outputs_.at(covers_.screens_.points(window().frame()).center());
}

std::optional<LayerSurface::Place> LayerCover::place() const {
  const WaylandOutput* where = output();
  return where == nullptr ? std::nullopt : std::optional(where->global());
}

bool LayerCover::fits(const ShmPicture& picture, const LayerSurface::Place&) const {
  const Monitor& monitor = output()->monitor();
  return picture.size() == monitor.pixels().size() &&
         covers_.screens_.points(window().frame()) == monitor.points;
}

std::unique_ptr<LayerSurface> LayerCover::make(const LayerSurface::Place& place,
                                               std::shared_ptr<const ShmPicture> picture,
                                               std::function<void()> arrived) {
  home_ = covers_.outputs_.numbered(place)->monitor().name;
  picture_ = std::move(picture);
  return std::make_unique<LayerSurface>(
      covers_.shell_, *covers_.outputs_.numbered(place), picture_,
      LayerSheet::Client{std::move(arrived), [this, place] { takeDownAt(place); }});
}

void LayerCover::entered() {
  covers_.shown_.push_back(this);
}

void LayerCover::left() {
  std::erase(covers_.shown_, this);
  home_.clear();
  picture_.reset();
}

void LayerCover::arrived(const LayerSurface::Place& place) {
  covers_.forEach([this, &place](LayerCover& other) {
    if (&other != this) other.giveWay(place);
  });
}

void LayerCover::lookAgain() {
  if (surface() != nullptr || !picture_ || home_.isEmpty() || covers_.shell_.connection.isLost())
    return;
  if (const WaylandOutput* home = covers_.outputs_.named(home_)) putUp(home->global(), picture_);
}

void LayerCover::giveWay(LayerSurface::Place place) {
  giveWayAt(place);
  if (surface() == nullptr) picture_.reset();
}

void LayerCover::remake() {
  if (surface() == nullptr || covers_.outputs_.numbered(surface()->place()) == nullptr) return;
  putUp(surface()->place(), surface()->picture());
}

LayerCovers::LayerCovers(const LayerShell& shell, const WaylandOutputs& outputs,
                         const MonitorScreens& screens)
    : shell_(shell),
      outputs_(outputs),
      screens_(screens),
      plasma_(QStringLiteral("org.kde.plasmashell"), QDBusConnection::sessionBus(),
              QDBusServiceWatcher::WatchForRegistration),
      startingPlasma_(kPlasmaStart,
                      [this] { forEach([](LayerCover& cover) { cover.remake(); }); }) {
  QObject::connect(&outputs, &WaylandOutputs::changed, &context_,
                   [this] { forEach([](LayerCover& cover) { cover.lookAgain(); }); });
  QObject::connect(&outputs, &WaylandOutputs::goes, &context_, [this](const WaylandOutput& gone) {
    forEach([&gone](LayerCover& cover) { cover.outputGoes(gone); });
  });
  QObject::connect(&plasma_, &QDBusServiceWatcher::serviceRegistered, &startingPlasma_,
                   [this] { startingPlasma_.start(); });
}

void LayerCovers::forEach(const std::function<void(LayerCover&)>& act) const {
  for (LayerCover* cover : std::vector(shown_)) act(*cover);
}

std::unique_ptr<platform::port::WindowPeer> LayerCovers::createCover(
    platform::NSWindow& window, platform::port::WindowClient&) {
  return std::make_unique<LayerCover>(window, *this);
}

}  // namespace linux_desktop
