#pragma once

#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

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
  QTimer settling_;
};

}  // namespace linux_desktop
