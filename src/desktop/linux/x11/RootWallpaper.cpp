#include "desktop/linux/x11/RootWallpaper.h"

#include <algorithm>
#include <array>
#include <utility>

#include "desktop/linux/wallpaper/BackdropRenderer.h"
#include "desktop/linux/x11/WindowManagers.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

constexpr const char* kCopy = "copy";
constexpr const char* kRefused = "The X server does not take the picture.";

/// Repeats a pixmap over `area`, from its corner.
bool tile(XServer& server, xcb_pixmap_t from, xcb_drawable_t into, const QRect& area) {
  const XContext context(server, into);
  const std::array<std::uint32_t, 4> values{XCB_FILL_STYLE_TILED, from,
                                            static_cast<std::uint32_t>(area.x()),
                                            static_cast<std::uint32_t>(area.y())};
  xcb_change_gc(
      server.get(), context.id(),
      XCB_GC_FILL_STYLE | XCB_GC_TILE | XCB_GC_TILE_STIPPLE_ORIGIN_X | XCB_GC_TILE_STIPPLE_ORIGIN_Y,
      values.data());
  const xcb_rectangle_t whole{
      static_cast<std::int16_t>(area.x()), static_cast<std::int16_t>(area.y()),
      static_cast<std::uint16_t>(area.width()), static_cast<std::uint16_t>(area.height())};
  return succeeded(server,
                   xcb_poly_fill_rectangle_checked(server.get(), into, context.id(), 1, &whole));
}

}  // namespace

bool RootWallpaper::isSeen() const {
  return !habitsOf(server().managerName()).paintsBackground || !server().isComposited();
}

/// Whether the root window still has the picture that we set last, for these monitors.
bool RootWallpaper::isOurs() const {
  const auto named = namedRootPixmap(server());
  return named && named->id == picture_;
}

std::optional<Backdrop> RootWallpaper::backdrop(const Monitor& monitor) {
  const auto file = files_.find(monitor.name);
  if (file == files_.end() || !isOurs()) return std::nullopt;
  return Backdrop{.file = file->second, .style = BackdropStyle::Zoomed};
}

std::optional<WallpaperState> RootWallpaper::state(const Monitor& monitor) {
  auto content = std::make_unique<XPixmap>(server(), monitor.pixels().size());
  if (!copyRootBackground(server(), monitor.pixels(), content->id())) return std::nullopt;
  const std::int64_t number = ++lastNumber_;
  told_.insert_or_assign(monitor.name,
                         Told{number, std::move(content), isRootPictureNamed(server())});
  const auto shown = backdrop(monitor);
  return WallpaperState{{{kCopy, number}}, shown ? shown->file : QString()};
}

/// Has `paint` change our picture, or one that begins as what the root window shows, and shows it.
bool RootWallpaper::draw(const std::function<bool(xcb_pixmap_t)>& paint) {
  const bool again = isOurs();
  const auto picture = again ? std::optional(picture_) : newRootPixmap(server());
  if (!picture) return false;
  if (!paint(*picture)) {
    if (!again) dropRootPixmap(server(), *picture);
    return false;
  }
  if (!again) files_.clear();
  picture_ = *picture;
  showRootPixmap(server(), *picture);
  return true;
}

Fault RootWallpaper::show(const Monitor& monitor, const QString& file,
                          const Dictionary& /*options*/) {
  BackdropLayout layout;
  layout.manner = manner();
  for (const Monitor& each : screens_.monitors()) layout.desktop |= each.pixels();
  const Backdrop backdrop{.file = file, .style = BackdropStyle::Zoomed};
  const QImage image = renderBackdrop(backdrop, monitor, layout);
  const bool shown = draw([&](xcb_pixmap_t picture) {
    return putImage(server(), picture, image, monitor.pixels().topLeft());
  });
  if (!shown) return kRefused;
  files_.insert_or_assign(monitor.name, file);
  return std::nullopt;
}

Fault RootWallpaper::restore(const Monitor& monitor, const Dictionary& kept) {
  const auto found = told_.find(monitor.name);
  const auto number = platform::valueOf<std::int64_t>(kept, kCopy);
  if (found == told_.end() || found->second.number != number) {
    return "The picture of before is no longer known.";
  }
  const std::vector<Monitor>& monitors = screens_.monitors();
  const auto present = std::ranges::find(monitors, monitor.name, &Monitor::name);
  // One that has gone since shows nothing.
  const bool shown =
      present == monitors.end() || draw([&](xcb_pixmap_t picture) {
        return tile(server(), found->second.content->id(), picture, present->pixels());
      });
  if (!shown) return kRefused;
  const bool wasNamed = found->second.named;
  files_.erase(monitor.name);
  told_.erase(found);
  if (wasNamed || !told_.empty()) return std::nullopt;
  if (const auto pixel = onlyPixel(server(), picture_)) {
    showRootColour(server(), *pixel);
    picture_ = XCB_NONE;
  }
  return std::nullopt;
}

void RootWallpaper::setChanged(std::function<void()> changed) {
  watch_ = changed ? watchRootPicture(events_, std::move(changed)) : nullptr;
}

}  // namespace linux_desktop
