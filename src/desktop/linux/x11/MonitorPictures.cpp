#include "desktop/linux/x11/MonitorPictures.h"

#include <utility>

namespace linux_desktop {
namespace {

/// Two programs that scale a picture do not arrive at quite the same colours.
constexpr int kScalingTolerance = 24;

}  // namespace

class MonitorPictures::Drawing {
 public:
  Drawing(BackdropSource* source, const Monitor& monitor) : source_(source), monitor_(monitor) {}

  /// Whether anybody knows what the desktop was told. Draws nothing.
  [[nodiscard]] bool isTold() {
    if (source_ != nullptr && !std::exchange(asked_, true)) backdrop_ = source_->backdrop(monitor_);
    return backdrop_.has_value();
  }
  /// Null where nobody knows, or it takes long to be drawn.
  const QImage& image() {
    if (!isTold() || std::exchange(drawn_, true)) return image_;
    const auto image = source_->render(*backdrop_, monitor_);
    takesLong_ = !image;
    if (image && image->size() == monitor_.pixels.size()) image_ = *image;
    return image_;
  }
  [[nodiscard]] bool takesLong() const { return takesLong_; }
  [[nodiscard]] bool agreesWith(const Samples& samples) {
    const auto points = samplePoints(QRect(QPoint(), monitor_.pixels.size()));
    return agreement(samplesOf(image(), points), samples, kScalingTolerance).isLikely();
  }

 private:
  BackdropSource* source_;
  const Monitor& monitor_;
  bool asked_ = false;
  std::optional<Backdrop> backdrop_;
  bool drawn_ = false;
  bool takesLong_ = false;
  QImage image_;
};

class MonitorPictures::Sight {
 public:
  Sight(XEvents& events, const Monitor& monitor) : events_(events), monitor_(monitor) {}

  /// Takes no look.
  [[nodiscard]] xcb_window_t iconWindow() const {
    const auto* icons = events_.stack().now().desktopOn(monitor_.pixels);
    return icons != nullptr ? icons->window : xcb_window_t{XCB_NONE};
  }
  const DesktopSight& look() {
    if (!sight_) sight_ = lookAtDesktop(events_.server(), events_.stack().now(), monitor_.pixels);
    return *sight_;
  }

 private:
  XEvents& events_;
  const Monitor& monitor_;
  std::optional<DesktopSight> sight_;
};

MonitorPictures::MonitorPictures(XEvents& events, const XScreens& screens)
    : events_(events), screens_(screens), root_(events.server()), formats_(events.server()) {
  learning_.setSingleShot(true);
  QObject::connect(&learning_, &QTimer::timeout, &learning_, [this] { learnBackdrops(); });
}

MonitorPictures::~MonitorPictures() {
  follow({});
}

void MonitorPictures::setBackdrops(BackdropSource* backdrops) {
  if (backdrops_ != nullptr) backdrops_->setChanged({});
  backdrops_ = backdrops;
  lastTold_.clear();
  awaited_.clear();
  watchBackdrops();
}

void MonitorPictures::follow(std::function<void()> changed) {
  changed_ = std::move(changed);
  watchBackdrops();
  watch_.reset();
  if (!changed_) return;
  XServer& server = events_.server();
  const xcb_atom_t picture = server.atom(kRootPictureProperty);
  watch_ = events_.watch(server.root(), XCB_EVENT_MASK_PROPERTY_CHANGE,
                         [this, picture](const xcb_generic_event_t& event) {
                           if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return;
                           // The same number may be written again, for other pixels.
                           const auto& change =
                               reinterpret_cast<const xcb_property_notify_event_t&>(event);
                           if (change.atom != picture) return;
                           root_.forgetPixmap();
                           changed_();
                         });
}

void MonitorPictures::watchBackdrops() {
  learning_.stop();
  if (backdrops_ == nullptr) return;
  backdrops_->setChanged(changed_ ? [this] { told(); } : std::function<void()>());
  if (changed_) learning_.start(0);
}

void MonitorPictures::learnBackdrops() {
  for (const Monitor& monitor : screens_.monitors()) {
    if (!lastTold_.contains(monitor.name)) {
      lastTold_.emplace(monitor.name, backdrops_->backdrop(monitor));
    }
  }
}

void MonitorPictures::told() {
  for (const Monitor& monitor : screens_.monitors()) {
    const auto backdrop = backdrops_->backdrop(monitor);
    const auto last = lastTold_.find(monitor.name);
    if (last != lastTold_.end() && last->second == backdrop) continue;
    lastTold_.insert_or_assign(monitor.name, backdrop);
    awaited_.insert_or_assign(monitor.name, rootSamples(monitor));
  }
  changed_();
}

Samples MonitorPictures::rootSamples(const Monitor& monitor) {
  const auto pixmap = root_.pixmap();
  if (!pixmap) return {};
  return samplesOf(events_.server(), pixmap->id, samplePoints(monitor.pixels));
}

bool MonitorPictures::isAwaited(const Monitor& monitor, Drawing& drawing) {
  const auto awaited = awaited_.find(monitor.name);
  if (awaited == awaited_.end()) return false;
  const Samples now = rootSamples(monitor);
  // What nobody knows cannot come, or may be there already.
  const bool isKnown = !drawing.image().isNull() || drawing.takesLong();
  if (isKnown && now == awaited->second && !drawing.agreesWith(now)) return true;
  awaited_.erase(awaited);
  return false;
}

bool MonitorPictures::isRight(const ForeignPixmap& root, const Monitor& monitor, Sight& sight,
                              Drawing& drawing) {
  if (root_.isKnownRight(root, monitor, sight.iconWindow())) return true;
  switch (root_.judge(root, monitor, sight.look())) {
    case RootPicture::Verdict::Right:
      return true;
    case RootPicture::Verdict::Wrong:
      return false;
    case RootPicture::Verdict::Unknown:
      break;
  }
  return drawing.image().isNull() || drawing.agreesWith(rootSamples(monitor));
}

std::shared_ptr<const XPicture> MonitorPictures::picture(const Monitor& monitor) {
  XServer& server = events_.server();
  Drawing drawing(backdrops_, monitor);
  Sight sight(events_, monitor);
  // A compositor may paint another picture than the root window's.
  if (sight.iconWindow() == XCB_NONE && !drawing.isTold() && !server.isComposited()) {
    if (auto picture = XPicture::fromRoot(server, monitor.pixels)) return picture;
  }
  const auto root = root_.pixmap();
  if (root && !isAwaited(monitor, drawing) && isRight(*root, monitor, sight, drawing)) {
    if (auto picture = XPicture::fromPixmap(server, formats_, *root, monitor.pixels))
      return picture;
  }
  if (auto picture = XPicture::fromImage(server, drawing.image())) return picture;
  if (drawing.takesLong()) return nullptr;
  const auto colour = sight.look().usual();
  return colour ? XPicture::solid(server, *colour, monitor.pixels.size()) : nullptr;
}

}  // namespace linux_desktop
