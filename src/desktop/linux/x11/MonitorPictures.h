#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "desktop/linux/wallpaper/Backdrop.h"
#include "desktop/linux/windowsystem/DesktopView.h"
#include "desktop/linux/x11/RootBackground.h"
#include "desktop/linux/x11/XPicture.h"
#include "desktop/linux/x11/XScreens.h"
#include "desktop/linux/xserver/WindowStack.h"
#include "desktop/linux/xserver/XEvents.h"
#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// Colours at some points, 0xRRGGBB, without transparency. None where there is none to be had.
using Samples = std::vector<std::optional<std::uint32_t>>;

/// 64 points spread over `area`.
[[nodiscard]] std::vector<QPoint> samplePoints(const QRect& area);

/// Whether pixels that are not opaque count.
enum class Transparency { Ignored, ShowsWhatIsBelow };

/// One round trip. `points` are in the drawable's own coordinates; a drawable that is gone has no
/// pixels.
[[nodiscard]] Samples samplesOf(XServer& server, xcb_drawable_t drawable,
                                std::span<const QPoint> points,
                                Transparency transparency = Transparency::Ignored);
[[nodiscard]] Samples samplesOf(const QImage& image, std::span<const QPoint> points);

/// Whether of those that are known on both sides at least four fifths differ by no more than
/// `tolerance` in each byte: icons and their labels lie over the rest.
[[nodiscard]] bool areLikelySame(const Samples& one, const Samples& other, int tolerance = 0);

/// What can be seen of the desktop itself on one monitor.
struct DesktopSight {
  /// None: nobody has a window of icons there, and the root window shows.
  xcb_window_t iconWindow = XCB_NONE;
  /// Of `samplePoints`, in their order; none where another window hides it, or where a compositor
  /// has something else show through the window of icons.
  Samples samples;

  [[nodiscard]] std::size_t seen() const;
  /// The median of each part of the colours seen: the only one of a plain desktop, whatever icons
  /// lie on it.
  [[nodiscard]] std::optional<std::uint32_t> usual() const;
};
[[nodiscard]] DesktopSight lookAtDesktop(XServer& server, const WindowStack& stack,
                                         const QRect& monitor);

/// The picture behind everything, where a desktop leaves one on the root window for others. It may
/// be another than the screen shows, and its owner may take it away at any time.
class RootPicture {
 public:
  explicit RootPicture(XServer& server) : server_(server) {}

  /// As `namedRootPixmap`.
  [[nodiscard]] std::optional<ForeignPixmap> pixmap() { return pixmap_.now(); }
  /// There may be another now.
  void forgetPixmap() { pixmap_.forget(); }

  /// Whether it was found right on `monitor` before, with the same window of icons. Asks nobody.
  [[nodiscard]] bool isKnownRight(const ForeignPixmap& pixmap, const Monitor& monitor,
                                  xcb_window_t iconWindow) const;

  /// Whether the pixmap is what the desktop shows on `monitor`, by what can be seen of it, or by
  /// what was found before where too little can be seen; none where nothing was.
  [[nodiscard]] std::optional<bool> judge(const ForeignPixmap& pixmap, const Monitor& monitor,
                                          const DesktopSight& sight);

 private:
  struct Finding {
    xcb_pixmap_t pixmap;
    xcb_window_t iconWindow;
    Monitor monitor;
    bool right;
  };

  /// Null: none with these.
  [[nodiscard]] const Finding* findingOf(const Monitor& monitor, xcb_window_t iconWindow) const;

  XServer& server_;
  OncePerTurn<std::optional<ForeignPixmap>> pixmap_{[this] { return namedRootPixmap(server_); }};
  /// By the monitor's name.
  std::map<QString, Finding> findings_;
};

/// The desktop of an X server. Its pictures are XPictures. Main thread only.
///
/// The picture that the desktop has left on the root window, where that is the right one; else what
/// it was told to show, drawn here. Where there is no desktop, the root window's own. A desktop
/// that was told of another picture takes its time to draw it; until it has, the picture is drawn
/// here. Where nobody knows what the desktop was told and the root window has no right picture, the
/// colour that is mostly seen takes its place.
class MonitorPictures final : public DesktopView {
 public:
  /// Both outlive this.
  MonitorPictures(XEvents& events, const XScreens& screens);

  /// See ToldBackdrops::setSource.
  void setBackdrops(BackdropSource* backdrops);
  /// See ToldBackdrops::lookAgain.
  void lookAgain() { backdrops_.lookAgain(); }

  [[nodiscard]] std::shared_ptr<const HeldPicture> picture(const Monitor& monitor) override;
  void follow(std::function<void()> changed) override;

 private:
  [[nodiscard]] Samples rootSamples(const Monitor& monitor);
  [[nodiscard]] bool isAwaited(const Monitor& monitor, ToldBackdrop& told);
  [[nodiscard]] DesktopSight look(const Monitor& monitor);
  [[nodiscard]] bool isRight(const ForeignPixmap& root, const Monitor& monitor,
                             xcb_window_t iconWindow, ToldBackdrop& told);

  XEvents& events_;
  RootPicture root_;
  PictureFormats formats_;
  ToldBackdrops backdrops_;
  std::vector<std::unique_ptr<XEvents::Watch>> watches_;
  /// The monitors whose new picture the desktop still has to draw, by name, with what the root
  /// picture was when it was told.
  std::map<QString, Samples> awaited_;
};

}  // namespace linux_desktop
