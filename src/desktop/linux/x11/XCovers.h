#pragma once

#include <memory>

#include "desktop/linux/windowsystem/CoverWindows.h"
#include "desktop/linux/x11/CoverKeeper.h"
#include "desktop/linux/x11/CoverSurface.h"
#include "desktop/linux/x11/XScreens.h"
#include "platform/port/Windows.h"

namespace platform {
class NSWindow;
}  // namespace platform

namespace linux_desktop {

/// A cover as the peer of its window. It is up while the window is shown and its content is an
/// image view with a captured XPicture of the frame's size; content of another kind or size changes
/// nothing. A cover that goes elsewhere is a new window there, and the old one goes once that is on
/// the screen: so a picture is never seen in another's place. A window's place is its frame's on
/// the screens of the moment, but a cover stays where it is until it is shown another picture or
/// another cover comes there: the monitors may be others for a while before the covers hear of it.
class XCoverWindow final : public platform::port::WindowPeer, private KeptCover {
 public:
  /// All outlive this.
  XCoverWindow(platform::NSWindow& window, XEvents& events, const XScreens& screens,
               CoverKeeper& keeper);
  ~XCoverWindow() override;
  XCoverWindow(const XCoverWindow&) = delete;
  XCoverWindow& operator=(const XCoverWindow&) = delete;

  void show(const platform::port::Placement& placement) override;
  void hide() override;
  void makeKey() override {}
  void update(const std::vector<platform::port::ChangedView>& changes, bool frameChanged) override;

 private:
  [[nodiscard]] CoverSurface* surface() override { return surface_.get(); }
  void remake(const CoverStand& stand) override;
  void giveWay(const QRect& area) override;
  void apply();
  void putUp(const QRect& area, const std::shared_ptr<const XPicture>& picture,
             const CoverStand& stand);

  platform::NSWindow& window_;
  XEvents& events_;
  const XScreens& screens_;
  CoverKeeper& keeper_;
  bool shown_ = false;
  std::unique_ptr<CoverSurface> surface_;
  /// The one before, until the present one is on the screen.
  std::unique_ptr<CoverSurface> leaving_;
};

/// Covers of an X desktop.
class XCovers final : public CoverWindows {
 public:
  /// Both outlive this.
  XCovers(XEvents& events, const XScreens& screens)
      : events_(events), screens_(screens), keeper_(events) {}

  /// See CoverKeeper::setIconsChanged.
  void setIconsChanged(std::function<void()> changed) {
    keeper_.setIconsChanged(std::move(changed));
  }

  [[nodiscard]] std::unique_ptr<platform::port::WindowPeer> createCover(
      platform::NSWindow& window, platform::port::WindowClient& client) override;

 private:
  XEvents& events_;
  const XScreens& screens_;
  CoverKeeper keeper_;
};

}  // namespace linux_desktop
