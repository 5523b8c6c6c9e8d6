#include "desktop/linux/x11/MonitorPictures.h"

#include <QRegion>
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "desktop/linux/xserver/XDrawing.h"

namespace linux_desktop {
namespace {

constexpr int kPointsAcross = 8;

bool areClose(std::uint32_t one, std::uint32_t other, int tolerance) {
  for (int shift = 0; shift < 24; shift += 8) {
    const int a = static_cast<int>((one >> shift) & 0xff);
    const int b = static_cast<int>((other >> shift) & 0xff);
    if (std::abs(a - b) > tolerance) return false;
  }
  return true;
}

/// The part of `area` where nothing hides the icons, or the root window if there are none.
QRegion uncovered(XServer& server, const WindowStack& stack,
                  const WindowStack::DesktopWindow* icons, const QRect& area) {
  const bool composited = server.isComposited();
  // Composited windows keep what is hidden of them.
  if (icons != nullptr && composited) return QRegion(area & icons->area);
  QRegion open(icons != nullptr ? area & icons->area : area);
  const auto whole = server.geometry(server.root());
  for (std::size_t i = icons != nullptr ? icons->level + 1 : 0; i < stack.topLevels.size(); ++i) {
    const WindowStack::TopLevel& window = stack.topLevels[i];
    // A compositor paints into a window over everything, which hides nothing.
    if (composited && window.overrideRedirect && window.area == whole) continue;
    open -= window.area;
  }
  return open;
}

/// Two programs that scale a picture do not arrive at quite the same colours.
constexpr int kScalingTolerance = 24;

bool agree(const QImage& image, const Samples& samples) {
  return areLikelySame(samplesOf(image, samplePoints(image.rect())), samples, kScalingTolerance);
}

}  // namespace

std::vector<QPoint> samplePoints(const QRect& area) {
  std::vector<QPoint> points;
  for (int row = 0; row < kPointsAcross; ++row) {
    for (int column = 0; column < kPointsAcross; ++column) {
      // Rows are shifted against each other, so that a regular picture is met at various places.
      const int x = area.width() * (8 * column + row) / (8 * kPointsAcross);
      const int y = area.height() * (8 * row + column) / (8 * kPointsAcross);
      points.emplace_back(area.x() + x, area.y() + y);
    }
  }
  return points;
}

Samples samplesOf(XServer& server, xcb_drawable_t drawable, std::span<const QPoint> points,
                  Transparency transparency) {
  constexpr std::uint8_t kDepthWithAlpha = 32;
  constexpr std::uint32_t kOpaque = 0xff;
  const bool mayShowThrough = transparency == Transparency::ShowsWhatIsBelow &&
                              server.screen().root_depth < kDepthWithAlpha;
  const auto ask = [&](const QPoint& point) {
    return xcb_get_image(server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable,
                         static_cast<std::int16_t>(point.x()), static_cast<std::int16_t>(point.y()),
                         1, 1, ~0U);
  };
  Samples samples;
  for (const auto& reply : answersTo(server.get(), points, ask, xcb_get_image_reply)) {
    samples.emplace_back();
    if (!reply) continue;
    std::uint32_t pixel = 0;
    const auto length = static_cast<std::size_t>(xcb_get_image_data_length(reply.get()));
    std::memcpy(&pixel, xcb_get_image_data(reply.get()), std::min(length, sizeof pixel));
    if (mayShowThrough && reply->depth == kDepthWithAlpha && pixel >> 24 != kOpaque) continue;
    samples.back() = PixelLayout::ofDepth(server, reply->depth).colour(pixel);
  }
  return samples;
}

Samples samplesOf(const QImage& image, std::span<const QPoint> points) {
  Samples samples;
  for (const QPoint& point : points) {
    samples.emplace_back();
    if (image.valid(point)) samples.back() = image.pixel(point) & 0xffffffU;
  }
  return samples;
}

bool areLikelySame(const Samples& one, const Samples& other, int tolerance) {
  std::size_t compared = 0;
  std::size_t close = 0;
  for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i) {
    if (!one[i] || !other[i]) continue;
    ++compared;
    if (areClose(*one[i], *other[i], tolerance)) ++close;
  }
  return compared > 0 && close * 5 >= compared * 4;
}

std::size_t DesktopSight::seen() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(samples, [](const auto& sample) { return sample.has_value(); }));
}

std::optional<std::uint32_t> DesktopSight::usual() const {
  if (seen() == 0) return std::nullopt;
  std::uint32_t colour = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    std::vector<std::uint32_t> part;
    for (const auto& sample : samples) {
      if (sample) part.push_back((*sample >> shift) & 0xff);
    }
    const auto middle = part.begin() + static_cast<std::ptrdiff_t>(part.size() / 2);
    std::ranges::nth_element(part, middle);
    colour |= *middle << shift;
  }
  return colour;
}

DesktopSight lookAtDesktop(XServer& server, const WindowStack& stack, const QRect& monitor) {
  const WindowStack::DesktopWindow* icons = stack.desktopOn(monitor);
  const QRegion open = uncovered(server, stack, icons, monitor);
  const xcb_window_t window = icons != nullptr ? icons->window : server.root();
  const QPoint origin = icons != nullptr ? icons->area.topLeft() : QPoint();
  const std::vector<QPoint> points = samplePoints(monitor);
  std::vector<QPoint> places = points;
  for (QPoint& place : places) place -= origin;
  const auto transparency = icons != nullptr && server.isComposited()
                                ? Transparency::ShowsWhatIsBelow
                                : Transparency::Ignored;
  DesktopSight sight{icons != nullptr ? icons->window : xcb_window_t{XCB_NONE},
                     samplesOf(server, window, places, transparency)};
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (!open.contains(points[i])) sight.samples[i].reset();
  }
  return sight;
}

namespace {

/// Fewer points than these prove nothing.
constexpr std::size_t kEnough = 16;

}  // namespace

const RootPicture::Finding* RootPicture::findingOf(const Monitor& monitor,
                                                   xcb_window_t iconWindow) const {
  const auto known = findings_.find(monitor.name);
  const bool isSame = known != findings_.end() && known->second.monitor == monitor &&
                      known->second.iconWindow == iconWindow;
  return isSame ? &known->second : nullptr;
}

bool RootPicture::isKnownRight(const ForeignPixmap& pixmap, const Monitor& monitor,
                               xcb_window_t iconWindow) const {
  const Finding* known = findingOf(monitor, iconWindow);
  // A desktop that draws into the pixmap again draws its own window a moment later.
  return known != nullptr && known->right && known->pixmap == pixmap.id;
}

std::optional<bool> RootPicture::judge(const ForeignPixmap& pixmap, const Monitor& monitor,
                                       const DesktopSight& sight) {
  if (sight.seen() < kEnough) {
    const Finding* known = findingOf(monitor, sight.iconWindow);
    return known == nullptr ? std::nullopt : std::optional(known->right);
  }
  const auto points = samplePoints(monitor.pixels());
  const bool right = areLikelySame(sight.samples, samplesOf(server_, pixmap.id, points));
  findings_.insert_or_assign(monitor.name, Finding{pixmap.id, sight.iconWindow, monitor, right});
  return right;
}

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
