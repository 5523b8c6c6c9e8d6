#pragma once

#include <map>
#include <optional>

#include "desktop/linux/wallpaper/Monitor.h"
#include "desktop/linux/x11/PixelSamples.h"
#include "desktop/linux/x11/XPicture.h"

namespace linux_desktop {

/// The picture behind everything, where a desktop leaves one on the root window for others. It may
/// be another than the screen shows, and its owner may take it away at any time.
class RootPicture {
 public:
  explicit RootPicture(XServer& server) : server_(server) {}

  /// The pixmap if there is one, it is alive and has the root window's size.
  [[nodiscard]] std::optional<ForeignPixmap> pixmap() const;

  enum class Verdict { Right, Wrong, Unknown };
  /// Whether the pixmap is what the desktop shows on `monitor`, by what can be seen of it, or by
  /// what was found before where too little can be seen.
  [[nodiscard]] Verdict judge(const ForeignPixmap& pixmap, const Monitor& monitor,
                              const DesktopSight& sight);

 private:
  struct Finding {
    xcb_pixmap_t pixmap;
    xcb_window_t iconWindow;
    Monitor monitor;
    bool right;
  };

  XServer& server_;
  /// By the monitor's name.
  std::map<QString, Finding> findings_;
};

}  // namespace linux_desktop
