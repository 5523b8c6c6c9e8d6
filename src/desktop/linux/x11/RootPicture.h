#pragma once

#include <QObject>
#include <map>
#include <optional>

#include "desktop/linux/wallpaper/Monitor.h"
#include "desktop/linux/wallpaper/RootBackground.h"
#include "desktop/linux/x11/PixelSamples.h"

namespace linux_desktop {

/// The picture behind everything, where a desktop leaves one on the root window for others. It may
/// be another than the screen shows, and its owner may take it away at any time.
class RootPicture {
 public:
  explicit RootPicture(XServer& server) : server_(server) {}

  /// As `namedRootPixmap`. Asked for at the first call of a turn of the event loop, and forgotten
  /// at its end.
  [[nodiscard]] std::optional<ForeignPixmap> pixmap();
  /// There may be another now.
  void forgetPixmap() { pixmapOfTurn_.reset(); }

  /// Whether it was found right on `monitor` before, with the same window of icons. Asks nobody.
  [[nodiscard]] bool isKnownRight(const ForeignPixmap& pixmap, const Monitor& monitor,
                                  xcb_window_t iconWindow) const;

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
  std::optional<std::optional<ForeignPixmap>> pixmapOfTurn_;
  QObject context_;
  /// By the monitor's name.
  std::map<QString, Finding> findings_;
};

}  // namespace linux_desktop
