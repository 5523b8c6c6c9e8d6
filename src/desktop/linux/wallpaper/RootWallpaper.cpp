#include "desktop/linux/wallpaper/RootWallpaper.h"

#include <algorithm>
#include <utility>

#include "desktop/linux/wallpaper/BackdropRenderer.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

constexpr const char* kCopy = "copy";
constexpr const char* kProperty = "_XROOTPMAP_ID";
/// Told and not yet put back; a program asks more than once before it sets.
constexpr std::size_t kMostSaved = 4;

/// Some points all over the root window.
std::vector<QPoint> samplePoints(const QRect& area) {
  std::vector<QPoint> points;
  for (const int part : {1, 3, 5, 7}) {
    points.emplace_back(area.width() * part / 8, area.height() * (8 - part) / 8);
  }
  return points;
}

QRect middleRow(const QRect& area) {
  return {0, area.height() / 2, area.width(), 1};
}

}  // namespace

/// Either a pixmap or, where none is shown, a colour.
struct RootWallpaper::Background {
  std::optional<xcb_pixmap_t> pixmap;
  std::uint32_t colour = 0;
  /// Tells one content of a pixmap from another.
  std::vector<std::uint32_t> sample;
  bool operator==(const Background&) const = default;
};

struct RootWallpaper::Saved {
  std::int64_t number = 0;
  Background background;
  std::unique_ptr<RootPixmap> content;
};

RootWallpaper::RootWallpaper(WallpaperSurroundings surroundings)
    : surroundings_(std::move(surroundings)) {}

RootWallpaper::~RootWallpaper() = default;

bool RootWallpaper::runs(const WallpaperSurroundings& surroundings) {
  return surroundings.x11 != nullptr && surroundings.desktop.window == XCB_NONE;
}

RootWallpaper::Background RootWallpaper::look() const {
  Background background;
  const QRect root = rootArea(server());
  const auto named = namedRootPixmap(server());
  // A program that gave the root window a colour has left the properties as they were.
  const bool isTrue =
      named && std::ranges::all_of(samplePoints(root), [&](const QPoint& point) {
        const auto pixels = pixelsOf(server(), *named, {point, QSize(1, 1)});
        return !pixels.empty() && rootBackgroundAt(server(), point) == pixels.front();
      });
  if (isTrue) {
    background.pixmap = named;
    background.sample = pixelsOf(server(), *named, middleRow(root));
  } else {
    background.colour = rootBackgroundAt(server(), samplePoints(root).front()).value_or(0);
  }
  return background;
}

std::unique_ptr<RootPixmap> RootWallpaper::contentOf(const Background& background) const {
  const QRect root = rootArea(server());
  auto content = std::make_unique<RootPixmap>(server(), root.size());
  content->fill(background.colour);
  if (background.pixmap) content->copy(*background.pixmap, root);
  return content;
}

std::optional<std::string> RootWallpaper::set(const RootPixmap& picture) {
  if (!setRootPixmap(server(), picture)) return "The X server does not take the picture.";
  ourPixmap_ = server().numbers(server().root(), kProperty);
  return std::nullopt;
}

RootWallpaper::Saved* RootWallpaper::savedUnder(std::int64_t number) {
  const auto found = std::ranges::find(saved_, number, &Saved::number);
  return found == saved_.end() ? nullptr : &*found;
}

std::optional<Backdrop> RootWallpaper::backdrop(const Monitor& monitor) {
  const QString file = ours_.value(monitor.name);
  if (file.isEmpty() || server().numbers(server().root(), kProperty) != ourPixmap_) {
    return std::nullopt;
  }
  return Backdrop{.file = file, .style = BackdropStyle::Zoomed};
}

std::optional<Dictionary> RootWallpaper::state(const Monitor& /*monitor*/) {
  Background background = look();
  if (saved_.empty() || saved_.back().background != background) {
    auto content = contentOf(background);
    saved_.push_back({++lastNumber_, std::move(background), std::move(content)});
    if (saved_.size() > kMostSaved) saved_.pop_front();
  }
  return Dictionary{{kCopy, saved_.back().number}};
}

std::optional<std::string> RootWallpaper::show(const Monitor& monitor, const QString& file) {
  const auto picture = contentOf(look());
  BackdropLayout layout;
  for (const Monitor& each : surroundings_.monitors()) layout.desktop |= each.pixels;
  const Backdrop backdrop{.file = file, .style = BackdropStyle::Zoomed};
  picture->draw(renderBackdrop(backdrop, monitor, layout), monitor.pixels.topLeft());
  if (auto reason = set(*picture)) return reason;
  ours_.insert(monitor.name, file);
  return std::nullopt;
}

/// Whether every monitor shows its part of what was saved.
bool RootWallpaper::isWhole(const Saved& saved) const {
  const Background present = look();
  return present.pixmap &&
         std::ranges::all_of(surroundings_.monitors(), [&](const Monitor& monitor) {
           const QRect row =
               middleRow({{}, monitor.pixels.size()}).translated(monitor.pixels.topLeft());
           return pixelsOf(server(), *present.pixmap, row) ==
                  pixelsOf(server(), saved.content->id(), row);
         });
}

std::optional<std::string> RootWallpaper::restore(const Monitor& monitor, const Dictionary& state) {
  const Saved* saved = savedUnder(platform::valueOf<std::int64_t>(state, kCopy).value_or(0));
  if (saved == nullptr) return "The picture of before is no longer known.";
  const auto picture = contentOf(look());
  picture->copy(saved->content->id(), monitor.pixels);
  if (auto reason = set(*picture)) return reason;
  ours_.remove(monitor.name);
  if (!saved->background.pixmap && isWhole(*saved)) {
    setRootColour(server(), saved->background.colour);
  }
  return std::nullopt;
}

void RootWallpaper::setChanged(std::function<void()> changed) {
  watch_.reset();
  if (!changed) return;
  const xcb_atom_t property = server().atom(kProperty);
  watch_ = surroundings_.x11->watch(
      server().root(), XCB_EVENT_MASK_PROPERTY_CHANGE,
      [property, changed = std::move(changed)](const xcb_generic_event_t& event) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if ((event.response_type & 0x7f) == XCB_PROPERTY_NOTIFY && change.atom == property) {
          changed();
        }
      });
}

}  // namespace linux_desktop
