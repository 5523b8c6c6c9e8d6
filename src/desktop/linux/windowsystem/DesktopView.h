#pragma once

#include <QImage>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wallpaper/Backdrop.h"
#include "desktop/linux/windowsystem/MonitorScreens.h"
#include "platform/port/Screens.h"

namespace platform {
class NSWindow;
}  // namespace platform

namespace linux_desktop {

/// A picture that a window system holds ready for its covers.
class HeldPicture {
 public:
  virtual ~HeldPicture() = default;
};

/// What a window system shows behind everything, monitor by monitor.
class DesktopView {
 public:
  virtual ~DesktopView() = default;

  /// Null where it cannot be had, or not yet: `follow` tells when it can.
  [[nodiscard]] virtual std::shared_ptr<const HeldPicture> picture(const Monitor& monitor) = 0;
  /// `changed` is called when the user went to another workspace, and when a monitor may show
  /// another picture now, or was told to. Empty: nothing is watched.
  virtual void follow(std::function<void()> changed) = 0;
};

/// The list holds the desktop pictures of the screens and no other windows: nobody asks for those.
class DesktopWindowList final : public platform::port::WindowList {
 public:
  /// Both outlive this, and `view` what was captured.
  DesktopWindowList(const MonitorScreens& screens, DesktopView& view)
      : screens_(screens), view_(view) {}

  [[nodiscard]] std::optional<std::vector<platform::Dictionary>> windowsOnScreen() const override;
  [[nodiscard]] std::shared_ptr<const platform::port::Capture> capture(
      std::uint32_t windowNumber) override;

 private:
  const MonitorScreens& screens_;
  DesktopView& view_;
};

/// The captured picture that is a window's content: the same each time, taken when it is first
/// asked for here. A window system works at one for some milliseconds, for which nothing else that
/// a turn of the event loop does has to wait. Null where there is none or it could not be had.
[[nodiscard]] std::shared_ptr<const HeldPicture> pictureIn(const platform::NSWindow& window);

/// The workspaces, and the pictures behind them. Wakes the program only for changes of those, which
/// is when the user acts.
class DesktopSpaces final : public platform::port::Spaces {
 public:
  /// `view` outlives this.
  explicit DesktopSpaces(DesktopView& view);
  ~DesktopSpaces() override;
  DesktopSpaces(const DesktopSpaces&) = delete;
  DesktopSpaces& operator=(const DesktopSpaces&) = delete;

  void setClient(platform::port::SpacesClient* client) override;

 private:
  DesktopView& view_;
  platform::port::SpacesClient* client_ = nullptr;
  /// A desktop draws one monitor after the other, and some time after the workspace changed.
  OneShot settling_;
};

/// What the desktop has been told to show on one monitor. It is asked about and drawn once at most.
class ToldBackdrop {
 public:
  /// `source` may be null: nobody knows. Both outlive this.
  ToldBackdrop(BackdropSource* source, const Monitor& monitor)
      : source_(source), monitor_(monitor) {}

  /// See BackdropSource::mayHaveIcons.
  [[nodiscard]] bool mayHaveIcons() { return source_ != nullptr && source_->mayHaveIcons(); }
  /// Whether anybody knows. Draws nothing.
  [[nodiscard]] bool isKnown();
  /// Of the monitor's size. Null where nobody knows, or it takes long to be drawn.
  [[nodiscard]] const QImage& image();
  /// Of the image that was asked for.
  [[nodiscard]] bool takesLong() const { return takesLong_; }

 private:
  BackdropSource* source_;
  const Monitor& monitor_;
  bool asked_ = false;
  std::optional<Backdrop> backdrop_;
  bool drawn_ = false;
  bool takesLong_ = false;
  QImage image_;
};

/// What the desktop has been told to show, and which monitors were told of another picture. Main
/// thread only.
class ToldBackdrops {
 public:
  /// `screens` outlives this.
  explicit ToldBackdrops(const MonitorScreens& screens) : screens_(screens) {}
  ~ToldBackdrops();
  ToldBackdrops(const ToldBackdrops&) = delete;
  ToldBackdrops& operator=(const ToldBackdrops&) = delete;

  /// Null, as at first: nobody knows. Outlives its being set.
  void setSource(BackdropSource* source);
  /// `changed` gets the monitors that were told of another picture since the last time; there may
  /// be none. Empty: nothing is watched.
  void follow(std::function<void(const std::vector<Monitor>& others)> changed);
  /// Another program may draw the desktop now, of which the source need not know yet.
  void lookAgain();
  [[nodiscard]] ToldBackdrop on(const Monitor& monitor) const { return {source_, monitor}; }

 private:
  void watch();
  void learn();
  void told();

  const MonitorScreens& screens_;
  BackdropSource* source_ = nullptr;
  std::function<void(const std::vector<Monitor>& others)> changed_;
  /// Asking takes a moment, which the start of the program need not wait for.
  OneShot learning_{std::chrono::milliseconds::zero(), [this] { learn(); }};
  /// By the monitor's name.
  std::map<QString, std::optional<Backdrop>> last_;
};

}  // namespace linux_desktop
