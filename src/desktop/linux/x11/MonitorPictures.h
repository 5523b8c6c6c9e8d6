#pragma once

#include <QTimer>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "desktop/linux/wallpaper/Backdrop.h"
#include "desktop/linux/x11/RootPicture.h"
#include "desktop/linux/x11/XPicture.h"
#include "desktop/linux/x11/XScreens.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// What the desktop shows behind everything, monitor by monitor. Main thread only.
///
/// The picture that the desktop has left on the root window, where that is the right one; else what
/// it was told to show, drawn here. Where there is no desktop, the root window's own. A desktop
/// that was told of another picture takes its time to draw it; until it has, the picture is drawn
/// here.
class MonitorPictures {
 public:
  /// Both outlive this.
  MonitorPictures(XEvents& events, const XScreens& screens);
  ~MonitorPictures();
  MonitorPictures(const MonitorPictures&) = delete;
  MonitorPictures& operator=(const MonitorPictures&) = delete;

  /// Null, as at first: nobody knows what the desktop was told, and where the root window has no
  /// right picture, the colour that is mostly seen takes its place. Outlives its being set.
  void setBackdrops(BackdropSource* backdrops);

  /// Null where it cannot be had, or not yet: `follow` tells when it can.
  [[nodiscard]] std::shared_ptr<const XPicture> picture(const Monitor& monitor);

  /// `changed` is called when a monitor may show another picture now, or was told to. Empty:
  /// nothing is watched.
  void follow(std::function<void()> changed);

 private:
  /// Drawn at most once for each picture that is asked for.
  class Drawing;
  /// Looked at, at most once for each picture that is asked for.
  class Sight;

  void watchBackdrops();
  void learnBackdrops();
  void told();
  [[nodiscard]] Samples rootSamples(const Monitor& monitor);
  [[nodiscard]] bool isAwaited(const Monitor& monitor, Drawing& drawing);
  [[nodiscard]] bool isRight(const ForeignPixmap& root, const Monitor& monitor, Sight& sight,
                             Drawing& drawing);

  XEvents& events_;
  const XScreens& screens_;
  RootPicture root_;
  PictureFormats formats_;
  BackdropSource* backdrops_ = nullptr;
  std::function<void()> changed_;
  std::unique_ptr<XEvents::Watch> watch_;
  /// Asking takes a moment, which the start of the program need not wait for.
  QTimer learning_;
  // By the monitor's name.
  std::map<QString, std::optional<Backdrop>> lastTold_;
  /// The monitors whose new picture the desktop still has to draw, with what the root picture was
  /// when it was told.
  std::map<QString, Samples> awaited_;
};

}  // namespace linux_desktop
