#include "desktop/linux/wallpaper/MateWallpaper.h"

#include <algorithm>

namespace linux_desktop {
namespace {

using platform::Dictionary;

constexpr const char* kLocked = "MATE's background is locked by the administrator.";
constexpr const char* kNoAnswer = "MATE's settings service does not answer.";
constexpr const char* kSchema = "org.mate.background";
constexpr const char* kPicture = "picture-filename";
constexpr const char* kOptions = "picture-options";
constexpr const char* kShading = "color-shading-type";
constexpr const char* kPrimary = "primary-color";
constexpr const char* kSecondary = "secondary-color";

struct StyleRow {
  const char* name;
  BackdropStyle style;
  bool spans = false;
};
constexpr StyleRow kStyles[] = {
    {"wallpaper", BackdropStyle::Tiled}, {"centered", BackdropStyle::Centered},
    {"scaled", BackdropStyle::Fitted},   {"stretched", BackdropStyle::Stretched},
    {"zoom", BackdropStyle::Zoomed},     {"spanned", BackdropStyle::Fitted, true},
};

struct ShadingRow {
  const char* name;
  BackdropShading shading;
};
constexpr ShadingRow kShadings[] = {{"horizontal-gradient", BackdropShading::Horizontal},
                                    {"vertical-gradient", BackdropShading::Vertical}};

/// Null when no row has that name.
template <class Row, std::size_t Count>
const Row* rowNamed(const Row (&table)[Count], const std::string& name) {
  const auto* found = std::ranges::find_if(table, [&](const Row& row) { return row.name == name; });
  return found == std::end(table) ? nullptr : found;
}

/// Pictures that take turns are a file that lists them.
bool isSlideShow(const std::string& file) {
  return file.ends_with(".xml");
}

}  // namespace

std::shared_ptr<WallpaperAdapter> MateWallpaper::make(const WallpaperSurroundings& /*unused*/) {
  auto settings =
      GuardedSettings::open(kSchema, {kPicture, kOptions, kShading, kPrimary, kSecondary});
  if (!settings) return nullptr;
  return std::shared_ptr<WallpaperAdapter>(new MateWallpaper(std::move(settings)));
}

std::optional<Backdrop> MateWallpaper::backdrop(const Monitor& /*monitor*/) {
  const auto text = [&](const char* key) { return settings_->text(key).value_or(std::string()); };
  Backdrop backdrop;
  backdrop.primary = QColor(QString::fromStdString(text(kPrimary)));
  backdrop.secondary = QColor(QString::fromStdString(text(kSecondary)));
  if (const auto* row = rowNamed(kShadings, text(kShading))) backdrop.shading = row->shading;
  const std::string file = text(kPicture);
  const StyleRow* style = rowNamed(kStyles, text(kOptions));
  if (file.empty() || style == nullptr) return backdrop;
  if (isSlideShow(file)) return std::nullopt;
  backdrop.file = QString::fromStdString(file);
  backdrop.style = style->style;
  backdrop.spansMonitors = style->spans;
  return backdrop;
}

std::optional<WallpaperState> MateWallpaper::state(const Monitor& monitor) {
  WallpaperState state;
  if (const auto value = settings_->userValue(kPicture)) state.kept.emplace(kPicture, *value);
  if (const auto shown = backdrop(monitor)) state.file = shown->file;
  return state;
}

std::optional<std::string> MateWallpaper::show(const Monitor& /*monitor*/, const QString& file,
                                               const Dictionary& /*options*/) {
  const std::string path = file.toStdString();
  if (settings_->text(kPicture) == path) return std::nullopt;
  if (!settings_->isWritable(kPicture)) return kLocked;
  const auto old = settings_->userValue(kPicture);
  if (!settings_->setText(kPicture, path)) return "MATE's settings refuse this picture.";
  if (GuardedSettings::flush()) return std::nullopt;
  (void)settings_->setUserValue(kPicture, old);
  return kNoAnswer;
}

std::optional<std::string> MateWallpaper::restore(const Monitor& /*monitor*/,
                                                  const Dictionary& kept) {
  const auto old = platform::valueOf<std::string>(kept, kPicture);
  if (settings_->userValue(kPicture) == old) return std::nullopt;
  if (!settings_->setUserValue(kPicture, old)) return kLocked;
  return GuardedSettings::flush() ? std::nullopt : std::optional<std::string>(kNoAnswer);
}

void MateWallpaper::setChanged(std::function<void()> changed) {
  if (!changed) return settings_->setChanged({});
  settings_->setChanged([changed = std::move(changed)](const std::string&) { changed(); });
}

}  // namespace linux_desktop
