#pragma once

#include <functional>
#include <optional>
#include <string>

#include "desktop/linux/wallpaper/Backdrop.h"
#include "platform/foundation/Value.h"

namespace linux_desktop {

/// What a monitor shows and how, on every workspace.
struct WallpaperState {
  /// All that `restore` takes: style, colours, slide show, keys that are absent.
  platform::Dictionary kept;
  /// Absolute; empty where there is no picture, or where pictures take turns, so that a path would
  /// not say what is shown.
  QString file;
};

/// Why something failed, in one line; none where it did not.
using Fault = std::optional<std::string>;

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

  /// How the monitor is now. None when the desktop does not answer. What it takes to keep (a copy
  /// of pixels that no file has) is kept until that is put back.
  [[nodiscard]] virtual std::optional<WallpaperState> state(const Monitor& monitor) = 0;

  /// Of what `state` keeps, under the same names, how a picture is laid out, where `show` may have
  /// to change that; empty where it never does. None when the desktop does not answer.
  [[nodiscard]] virtual std::optional<platform::Dictionary> options(const Monitor& /*monitor*/) {
    return platform::Dictionary();
  }

  /// Shows the picture on that monitor on every workspace, laid out as `options` have it, or as now
  /// where they say nothing, but zoomed where no picture would be seen. `file` is absolute and was
  /// found to be a picture that this process can read. On failure nothing has changed and the
  /// reason comes back, in one line.
  [[nodiscard]] virtual Fault show(const Monitor& monitor, const QString& file,
                                   const platform::Dictionary& options) = 0;

  /// Puts back what `state` has told to be kept, maybe to another adapter of this desktop, also for
  /// a monitor that has gone since where the desktop keeps settings for such. What nobody but the
  /// user can have changed stays as it is. The reason on failure.
  [[nodiscard]] virtual Fault restore(const Monitor& monitor, const platform::Dictionary& kept) = 0;

  /// `changed` is called when what a monitor has been told to show may have become another, by
  /// anybody. Empty: nothing is watched.
  virtual void setChanged(std::function<void()> changed) = 0;

  /// Whether icons may stand on the picture.
  [[nodiscard]] virtual bool mayHaveIcons() const { return true; }
  [[nodiscard]] virtual BackdropManner manner() const { return {}; }
};

}  // namespace linux_desktop
