#include "desktop/linux/x11/MonitorPictures.h"

namespace linux_desktop {
namespace {

/// Two programs that scale a picture do not arrive at quite the same colours.
constexpr int kScalingTolerance = 24;

bool agree(const QImage& image, const Samples& samples) {
  return areLikelySame(samplesOf(image, samplePoints(image.rect())), samples, kScalingTolerance);
}

}  // namespace

MonitorPictures::MonitorPictures(XEvents& events, const XScreens& screens)
    : events_(events), root_(events.server()), formats_(events.server()), backdrops_(screens) {}

void MonitorPictures::setBackdrops(BackdropSource* backdrops) {
  awaited_.clear();
  backdrops_.setSource(backdrops);
}

void MonitorPictures::follow(std::function<void()> changed) {
  watches_.clear();
  if (!changed) return backdrops_.follow({});
  watches_.push_back(
      events_.watchProperty(events_.server().root(), "_NET_CURRENT_DESKTOP", changed));
  watches_.push_back(watchRootPicture(events_, [this, changed] {
    root_.forgetPixmap();
    changed();
  }));
  backdrops_.follow([this, changed](const std::vector<Monitor>& others) {
    for (const Monitor& monitor : others) {
      awaited_.insert_or_assign(monitor.name, rootSamples(monitor));
    }
    changed();
  });
}

Samples MonitorPictures::rootSamples(const Monitor& monitor) {
  const auto pixmap = root_.pixmap();
  if (!pixmap) return {};
  return samplesOf(events_.server(), pixmap->id, samplePoints(monitor.pixels()));
}

bool MonitorPictures::isAwaited(const Monitor& monitor, ToldBackdrop& told) {
  const auto awaited = awaited_.find(monitor.name);
  if (awaited == awaited_.end()) return false;
  const Samples now = rootSamples(monitor);
  // What nobody knows cannot come, or may be there already.
  const bool isKnown = !told.image().isNull() || told.takesLong();
  if (isKnown && now == awaited->second && !agree(told.image(), now)) return true;
  awaited_.erase(awaited);
  return false;
}

DesktopSight MonitorPictures::look(const Monitor& monitor) {
  return lookAtDesktop(events_.server(), events_.stack(), monitor.pixels());
}

bool MonitorPictures::isRight(const ForeignPixmap& root, const Monitor& monitor,
                              xcb_window_t iconWindow, ToldBackdrop& told) {
  if (root_.isKnownRight(root, monitor, iconWindow)) return true;
  if (const auto right = root_.judge(root, monitor, look(monitor))) return *right;
  return told.image().isNull() || agree(told.image(), rootSamples(monitor));
}

std::shared_ptr<const HeldPicture> MonitorPictures::picture(const Monitor& monitor) {
  XServer& server = events_.server();
  ToldBackdrop told = backdrops_.on(monitor);
  const auto* icons = events_.stack().desktopOn(monitor.pixels());
  const xcb_window_t iconWindow = icons != nullptr ? icons->window : xcb_window_t{XCB_NONE};
  // A compositor may paint another picture than the root window's.
  if (iconWindow == XCB_NONE && !told.isKnown() && !server.isComposited()) {
    if (auto picture = XPicture::fromRoot(server, monitor.pixels())) return picture;
  }
  const auto root = root_.pixmap();
  if (root && !isAwaited(monitor, told) && isRight(*root, monitor, iconWindow, told)) {
    if (auto picture = XPicture::fromPixmap(server, formats_, *root, monitor.pixels()))
      return picture;
  }
  if (auto picture = XPicture::fromImage(server, told.image())) return picture;
  if (told.takesLong()) return nullptr;
  const auto colour = look(monitor).usual();
  return colour ? XPicture::solid(server, *colour, monitor.pixels().size()) : nullptr;
}

}  // namespace linux_desktop
