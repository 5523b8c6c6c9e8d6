#pragma once

#include <QObject>
#include <QRect>
#include <chrono>
#include <functional>
#include <vector>

#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wallpaper/Backdrop.h"
#include "platform/port/Screens.h"

namespace linux_desktop {

/// The pixels that the platform counts for a point: there are screens with one, and with two. Where
/// the monitor itself has a number between, or more, only the window system knows.
[[nodiscard]] inline double backingScaleOf(const Monitor& monitor) {
  return monitor.scale > 1 ? 2 : 1;
}

/// The screens of a window system, from the monitors that it lists: the first one first, of which
/// there always is one. Its points go down from a corner of the whole desktop, those of a screen go
/// up from the bottom of the first one; nothing else turns the one into the other.
class MonitorScreens : public platform::port::Screens {
 public:
  void setClient(platform::port::ScreensClient* client) override { client_ = client; }
  [[nodiscard]] std::vector<platform::port::ScreenInfo> screens() const override;

  /// The same screens in the same order.
  [[nodiscard]] const std::vector<Monitor>& monitors() const { return monitors_; }
  /// Where on the whole desktop a screen's frame, or a part of it, is; y down.
  [[nodiscard]] QRect points(const platform::NSRect& frame) const;

 protected:
  using Read = std::function<std::vector<Monitor>()>;
  /// `read` gives one monitor at least. A change takes `settling` until it is over.
  MonitorScreens(Read read, std::chrono::milliseconds settling);

  /// For the constructors, once changes are watched.
  void readNow() { monitors_ = read_(); }
  /// The monitors may be others.
  void mayHaveChanged() { settling_.start(); }
  /// For connections that end with this.
  [[nodiscard]] QObject& context() { return settling_; }

 private:
  void settled();

  Read read_;
  platform::port::ScreensClient* client_ = nullptr;
  std::vector<Monitor> monitors_;
  /// A change arrives as several events, with states between them that nobody sees.
  OneShot settling_;
};

/// The screens as Qt tells them, for a window system that has no better source.
class QtScreens final : public MonitorScreens {
 public:
  /// Needs the application object.
  QtScreens();
};

}  // namespace linux_desktop
