#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

/// A desktop that shows one picture on all monitors and workspaces and keeps it in GSettings.
struct GSettingsDesktop {
  const char* name;
  const char* schema;
  /// The key of the picture: a URI, but a path where that is what the key's name says.
  const char* picture;
  /// The one that counts while the interface is dark, or null.
  const char* darkPicture = nullptr;
  /// The schema of a program that writes one picture after the other, or null. When anybody else
  /// writes one, it switches itself off.
  const char* slideShow = nullptr;
  /// GNOME's compositor draws it, which knows colours only where there is no picture, stretches one
  /// over all monitors and lays tiles around the middle of those.
  bool composed = false;
};

inline constexpr GSettingsDesktop kMateSettings{"MATE", "org.mate.background", "picture-filename"};
inline constexpr GSettingsDesktop kCinnamonSettings{
    .name = "Cinnamon",
    .schema = "org.cinnamon.desktop.background",
    .picture = "picture-uri",
    .slideShow = "org.cinnamon.desktop.background.slideshow"};
inline constexpr GSettingsDesktop kFlashbackSettings{"GNOME Flashback",
                                                     "org.gnome.desktop.background", "picture-uri"};
inline constexpr GSettingsDesktop kBudgieSettings{.name = "Budgie",
                                                  .schema = "org.gnome.desktop.background",
                                                  .picture = "picture-uri",
                                                  .composed = true};
inline constexpr GSettingsDesktop kGnomeSettings{.name = "GNOME",
                                                 .schema = "org.gnome.desktop.background",
                                                 .picture = "picture-uri",
                                                 .darkPicture = "picture-uri-dark",
                                                 .composed = true};

/// Any of those, whichever program draws it.
class GSettingsWallpaper final : public WallpaperAdapter {
 public:
  /// Null where the settings cannot be reached.
  template <const GSettingsDesktop& desktop>
  [[nodiscard]] static std::shared_ptr<WallpaperAdapter> make(const WallpaperSurroundings&) {
    return open(desktop);
  }

  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  std::optional<platform::Dictionary> options(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file,
                                  const platform::Dictionary& options) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override;

  [[nodiscard]] BackdropManner manner() const override;

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

  GSettingsWallpaper(const GSettingsDesktop& desktop, std::unique_ptr<GuardedSettings> settings);
  [[nodiscard]] static std::shared_ptr<WallpaperAdapter> open(const GSettingsDesktop& desktop);

  /// All that a picture may change, with what the user has set there, in the order in which it is
  /// put back: the slide show last, or the picture would end it.
  [[nodiscard]] Changes present() const;
  /// Empty where there is none.
  [[nodiscard]] QString fileInForce() const;
  /// Whether it cannot be read, which is said once.
  [[nodiscard]] bool complainsOf(const QString& file);
  [[nodiscard]] bool takesTurns() const;
  /// None: unset, or for the picture that its path is no text.
  [[nodiscard]] std::optional<std::string> valueToShow(const Change& present, const QString& file,
                                                       const platform::Dictionary& options) const;
  /// The reason on failure; `undo` then takes back what was done.
  [[nodiscard]] std::optional<std::string> write(const Changes& wanted, Changes& undo) const;

  const GSettingsDesktop& desktop_;
  std::unique_ptr<GuardedSettings> settings_;
  // Null where the desktop has none.
  std::unique_ptr<GuardedSettings> slideShow_;
  std::unique_ptr<GuardedSettings> interface_;
  std::optional<std::string> fault_;
};

}  // namespace linux_desktop
