#include "desktop/linux/x11/RootPicture.h"

#include <QMetaObject>

namespace linux_desktop {
namespace {

/// Fewer points than these prove nothing.
constexpr std::size_t kEnough = 16;

}  // namespace

std::optional<ForeignPixmap> RootPicture::pixmap() {
  if (!pixmapOfTurn_) {
    pixmapOfTurn_ = namedRootPixmap(server_);
    QMetaObject::invokeMethod(
        &context_, [this] { pixmapOfTurn_.reset(); }, Qt::QueuedConnection);
  }
  return *pixmapOfTurn_;
}

bool RootPicture::isKnownRight(const ForeignPixmap& pixmap, const Monitor& monitor,
                               xcb_window_t iconWindow) const {
  const auto known = findings_.find(monitor.name);
  // A desktop that draws into the pixmap again draws its own window a moment later.
  return known != findings_.end() && known->second.monitor == monitor &&
         known->second.iconWindow == iconWindow && known->second.right &&
         known->second.pixmap == pixmap.id;
}

RootPicture::Verdict RootPicture::judge(const ForeignPixmap& pixmap, const Monitor& monitor,
                                        const DesktopSight& sight) {
  const auto known = findings_.find(monitor.name);
  const bool sameIcons = known != findings_.end() && known->second.monitor == monitor &&
                         known->second.iconWindow == sight.iconWindow;
  if (sight.seen() < kEnough) {
    if (!sameIcons) return Verdict::Unknown;
    return known->second.right ? Verdict::Right : Verdict::Wrong;
  }
  const auto points = samplePoints(monitor.pixels);
  const bool right = agreement(sight.samples, samplesOf(server_, pixmap.id, points)).isLikely();
  findings_.insert_or_assign(monitor.name, Finding{pixmap.id, sight.iconWindow, monitor, right});
  return right ? Verdict::Right : Verdict::Wrong;
}

}  // namespace linux_desktop
