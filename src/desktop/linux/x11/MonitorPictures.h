#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "desktop/linux/windowsystem/DesktopView.h"
#include "desktop/linux/x11/RootPicture.h"
#include "desktop/linux/x11/XPicture.h"
#include "desktop/linux/x11/XScreens.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

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
