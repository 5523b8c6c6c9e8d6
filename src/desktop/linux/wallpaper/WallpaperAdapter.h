#pragma once

#include <functional>
#include <optional>
#include <string>

#include "desktop/linux/wallpaper/Backdrop.h"
#include "desktop/linux/wallpaper/BackdropManner.h"
#include "desktop/linux/wallpaper/Monitor.h"
#include "platform/foundation/Value.h"

namespace linux_desktop {

/// In a state, with the value true: the picture changes by itself, so that its path would not say
/// what is shown.
inline constexpr const char* kSlideShow = "slideShow";

/// One desktop's way of keeping the picture behind everything. One adapter a desktop; the table in
/// WallpaperTable.h lists them. Main thread only; no operation takes longer than half a second, and
/// where a desktop does not answer in that time it counts as a failure, or is told without waiting
/// for its answer.
class WallpaperAdapter {
 public:
  virtual ~WallpaperAdapter() = default;

  /// What the monitor has been told to show on the present workspace. None when nobody knows or the
  /// desktop does not answer.
  [[nodiscard]] virtual std::optional<Backdrop> backdrop(const Monitor& monitor) = 0;

  /// All that `restore` takes to put the monitor back as it is now, on every workspace: style,
  /// colours, slide show, keys that are absent. None when the desktop does not answer.
  /// What it takes to keep (a copy of pixels that no file has) is kept until that is put back.
  [[nodiscard]] virtual std::optional<platform::Dictionary> state(const Monitor& monitor) = 0;

  /// How the monitor shows its picture now; keeps nothing.
  [[nodiscard]] virtual std::optional<platform::Dictionary> options(const Monitor& monitor) {
    return state(monitor);
  }

  /// Shows the picture on that monitor on every workspace, with the monitor's own scaling (zoomed
  /// where it shows no picture now). `file` is absolute and was found to be a picture that this
  /// process can read. On failure nothing has changed and the reason comes back, in one line.
  [[nodiscard]] virtual std::optional<std::string> show(const Monitor& monitor,
                                                        const QString& file) = 0;

  /// Puts back exactly what `state` told, maybe to another adapter of this desktop, also for a
  /// monitor that has gone since where the desktop keeps settings for such. The reason on failure.
  [[nodiscard]] virtual std::optional<std::string> restore(const Monitor& monitor,
                                                           const platform::Dictionary& state) = 0;

  /// `changed` is called when what a monitor has been told to show may have become another, by
  /// anybody. Empty: nothing is watched.
  virtual void setChanged(std::function<void()> changed) = 0;

  /// How this desktop lays its tiles: from the corner of the whole desktop rather than from each
  /// monitor's own.
  [[nodiscard]] virtual bool tilesFromDesktopOrigin() const { return false; }
  /// Whether a spanned picture covers the whole desktop, the rest cut off, rather than fit inside.
  [[nodiscard]] virtual bool spansByZooming() const { return true; }
  [[nodiscard]] virtual BackdropManner manner() const { return {}; }
};

}  // namespace linux_desktop
