#include "desktop/linux/wallpaper/DesktopWallpapers.h"

#include <QUrl>
#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/wallpaper/PictureReader.h"
#include "desktop/linux/wallpaper/Timetable.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

constexpr const char* kOptions = "picture-options";
constexpr const char* kShading = "color-shading-type";
constexpr const char* kPrimary = "primary-color";
constexpr const char* kSecondary = "secondary-color";
constexpr const char* kTakesTurns = "slideshow-enabled";
constexpr const char* kInterface = "org.gnome.desktop.interface";
constexpr const char* kScheme = "color-scheme";
// As GLib prints values.
constexpr const char* kFalse = "false";
constexpr const char* kZoom = "'zoom'";

constexpr BackdropStyleName kStyles[] = {
    {"wallpaper", BackdropStyle::Tiled}, {"centered", BackdropStyle::Centered},
    {"scaled", BackdropStyle::Fitted},   {"stretched", BackdropStyle::Stretched},
    {"zoom", BackdropStyle::Zoomed},     {"spanned", BackdropStyle::Fitted, true},
};

/// MATE's names have more to them.
BackdropShading shadingNamed(std::string_view name) {
  if (name.starts_with("horizontal")) return BackdropShading::Horizontal;
  return name.starts_with("vertical") ? BackdropShading::Vertical : BackdropShading::Solid;
}

bool isUri(const char* key) {
  return std::string_view(key).starts_with("picture-uri");
}

/// Empty where it names no file.
QString fileIn(const char* key, const std::string& value) {
  const QString text = QString::fromStdString(value);
  return isUri(key) && !text.startsWith(QLatin1Char('/')) ? QUrl(text).toLocalFile() : text;
}

std::string valueFor(const char* key, const QString& file) {
  return isUri(key) ? QUrl::fromLocalFile(file).toEncoded().toStdString() : file.toStdString();
}

class GSettingsWallpaper final : public WallpaperAdapter {
 public:
  GSettingsWallpaper(const GSettingsDesktop& desktop, std::unique_ptr<GuardedSettings> settings)
      : desktop_(desktop), settings_(std::move(settings)) {
    if (desktop.slideShow != nullptr) {
      slideShow_ = GuardedSettings::open(desktop.slideShow, {kTakesTurns});
    }
    if (desktop.darkPicture != nullptr) interface_ = GuardedSettings::open(kInterface, {kScheme});
  }

  std::optional<Backdrop> backdrop(const Monitor& monitor) override {
    const auto text = [&](const char* key) { return settings_->text(key).value_or(std::string()); };
    QString file = fileInForce();
    const BackdropStyleName row = styleNamed(text(kOptions), kStyles);
    if (desktop_.isBlackWithoutPicture && (row.style == BackdropStyle::None || isTimetable(file))) {
      return Backdrop{};
    }
    const bool hasPicture = !file.isEmpty() && row.style != BackdropStyle::None;
    if (hasPicture && isTimetable(file)) {
      file = pictureAt(file, QDateTime::currentDateTime(), monitor.pixels().size());
      if (file.isEmpty()) return std::nullopt;
    }
    Backdrop backdrop;
    // What cannot be read here, GNOME's own pictures in newer formats say, is better a colour of
    // the user's than black.
    const bool isFramedInBlack = hasPicture && desktop_.composed && !readingFault(file);
    if (!isFramedInBlack) {
      backdrop.primary = QColor(QString::fromStdString(text(kPrimary)));
      backdrop.secondary = QColor(QString::fromStdString(text(kSecondary)));
      backdrop.shading = shadingNamed(text(kShading));
    }
    if (!hasPicture) return backdrop;
    backdrop.file = file;
    backdrop.style = row.spans && desktop_.composed ? BackdropStyle::Stretched : row.style;
    backdrop.spansMonitors = row.spans;
    return backdrop;
  }

  std::optional<WallpaperState> state(const Monitor& monitor) override {
    WallpaperState state;
    for (const Change& change : present()) {
      if (change.value) state.kept.emplace(change.key, *change.value);
    }
    if (takesTurns() || isTimetable(fileInForce())) return state;
    if (const auto shown = backdrop(monitor)) state.file = shown->file;
    return state;
  }

  std::optional<Dictionary> options(const Monitor& /*monitor*/) override {
    Dictionary options;
    for (const Change& change : present()) {
      if (change.role != Role::Picture && change.value) options.emplace(change.key, *change.value);
    }
    return options;
  }

  Fault show(const Monitor& /*monitor*/, const QString& file, const Dictionary& options) override {
    Changes wanted = present();
    for (Change& change : wanted) {
      change.value = valueToShow(change, file, options);
      if (change.role == Role::Picture && !change.value) {
        return std::string(desktop_.name) + "'s settings refuse this picture.";
      }
    }
    // One that runs would take the new picture for the user's.
    if (slideShow_) std::rotate(wanted.begin(), wanted.end() - 1, wanted.end());
    Changes undo;
    auto reason = write(wanted, undo);
    Changes undone;
    if (reason) (void)write(undo, undone);
    return reason;
  }

  Fault restore(const Monitor& /*monitor*/, const Dictionary& kept) override {
    Changes wanted = present();
    for (Change& change : wanted) change.value = platform::valueOf<std::string>(kept, change.key);
    Changes undo;
    return write(wanted, undo);
  }

  void setChanged(std::function<void()> changed) override {
    const auto tell = [&]() -> std::function<void(const std::string&)> {
      if (!changed) return {};
      return [changed](const std::string&) { changed(); };
    };
    settings_->setChanged(tell());
    if (interface_) interface_->setChanged(tell());
  }

  [[nodiscard]] BackdropManner manner() const override {
    return {.rounding = desktop_.composed ? SizeRounding::AsMutter : SizeRounding::Nearest,
            .scalesByGl = desktop_.composed,
            .turnsUpright = true,
            .tilesFromDesktopOrigin = true,
            .centersTiles = desktop_.composed,
            .stretchesTiles = desktop_.composed,
            .cutsTilesToLastMonitor = !desktop_.composed,
            .spansByZooming = false};
  }

 private:
  enum class Role { Picture, Style, SlideShow };
  /// One key and what its user value is to be; none: unset.
  struct Change {
    Role role;
    GuardedSettings* settings;
    const char* key;
    std::optional<std::string> value = std::nullopt;
  };
  using Changes = std::vector<Change>;

  /// All that a picture may change, with what the user has set there, in the order in which it is
  /// put back: the slide show last, or the picture would end it.
  [[nodiscard]] Changes present() const {
    Changes changes{{Role::Picture, settings_.get(), desktop_.picture}};
    if (desktop_.darkPicture != nullptr) {
      changes.push_back({Role::Picture, settings_.get(), desktop_.darkPicture});
    }
    changes.push_back({Role::Style, settings_.get(), kOptions});
    if (slideShow_) changes.push_back({Role::SlideShow, slideShow_.get(), kTakesTurns});
    for (Change& change : changes) change.value = change.settings->userValue(change.key);
    return changes;
  }

  /// Empty where there is none.
  [[nodiscard]] QString fileInForce() const {
    const bool isDark = interface_ && interface_->text(kScheme) == "prefer-dark";
    const char* key = isDark ? desktop_.darkPicture : desktop_.picture;
    return fileIn(key, settings_->text(key).value_or(std::string()));
  }

  [[nodiscard]] bool takesTurns() const {
    return slideShow_ && slideShow_->flag(kTakesTurns) == true;
  }

  /// None: unset, or for the picture that its path is no text.
  [[nodiscard]] std::optional<std::string> valueToShow(const Change& present, const QString& file,
                                                       const Dictionary& options) const {
    switch (present.role) {
      case Role::Picture:
        return GuardedSettings::printed(valueFor(present.key, file));
      case Role::SlideShow:
        return takesTurns() ? kFalse : present.value;
      case Role::Style:
        break;
    }
    const auto given = platform::valueOf<std::string>(options, present.key);
    const auto style =
        given ? given : GuardedSettings::printed(settings_->text(kOptions).value_or(""));
    const bool isSeen = std::ranges::any_of(kStyles, [&](const auto& row) {
      return style == GuardedSettings::printed(std::string(row.name));
    });
    if (!isSeen) return kZoom;
    return given ? given : present.value;
  }

  /// The reason on failure; `undo` then takes back what was done.
  [[nodiscard]] Fault write(const Changes& wanted, Changes& undo) const {
    for (const Change& change : wanted) {
      auto old = change.settings->userValue(change.key);
      if (old == change.value) continue;
      if (!change.settings->setUserValue(change.key, change.value)) {
        return std::string(desktop_.name) + "'s background is locked by the administrator.";
      }
      undo.insert(undo.begin(), {change.role, change.settings, change.key, std::move(old)});
    }
    if (undo.empty() || GuardedSettings::flush()) return std::nullopt;
    return std::string(desktop_.name) + "'s settings service does not answer.";
  }

  const GSettingsDesktop& desktop_;
  std::unique_ptr<GuardedSettings> settings_;
  // Null where the desktop has none.
  std::unique_ptr<GuardedSettings> slideShow_;
  std::unique_ptr<GuardedSettings> interface_;
};

}  // namespace

std::shared_ptr<WallpaperAdapter> gsettingsWallpaper(const GSettingsDesktop& desktop) {
  std::vector<std::string> keys{desktop.picture, kOptions, kShading, kPrimary, kSecondary};
  if (desktop.darkPicture != nullptr) keys.emplace_back(desktop.darkPicture);
  auto settings = GuardedSettings::open(desktop.schema, std::move(keys));
  if (!settings) return nullptr;
  return std::make_shared<GSettingsWallpaper>(desktop, std::move(settings));
}

}  // namespace linux_desktop
