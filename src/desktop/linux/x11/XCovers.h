#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "desktop/linux/windowsystem/CoverFactory.h"
#include "desktop/linux/windowsystem/CoverPeer.h"
#include "desktop/linux/x11/CoverKeeper.h"
#include "desktop/linux/x11/CoverSurface.h"
#include "desktop/linux/x11/XScreens.h"

namespace linux_desktop {

/// A cover on an X server: its pictures are XPictures, its places areas of the root window.
class XCoverWindow final : public CoverPeer<CoverSurface> {
 public:
  /// All outlive this.
  XCoverWindow(platform::NSWindow& window, XEvents& events, const XScreens& screens,
               CoverKeeper& keeper);
  ~XCoverWindow() override;

  using CoverPeer::giveWayAt;
  using CoverPeer::surface;
  /// Puts up another window in its place, with the same picture: what a window manager does with a
  /// window is decided when that comes.
  void remake(const CoverStand& stand);

 private:
  [[nodiscard]] std::optional<QRect> place() const override;
  [[nodiscard]] bool fits(const XPicture& picture, const QRect& place) const override;
  [[nodiscard]] std::unique_ptr<CoverSurface> make(const QRect& place,
                                                   std::shared_ptr<const XPicture> picture,
                                                   std::function<void()> arrived) override;
  void entered() override { keeper_.add(*this); }
  void left() override { keeper_.remove(*this); }
  void arrived(const QRect& place) override { keeper_.arrived(*this, place); }

  XEvents& events_;
  const XScreens& screens_;
  CoverKeeper& keeper_;
  /// How the next surface has to be made; none: as the keeper says.
  std::optional<CoverStand> stand_;
};

/// Covers of an X desktop.
class XCovers final : public CoverFactory {
 public:
  /// Both outlive this. `iconsChanged`: see CoverKeeper.
  XCovers(XEvents& events, const XScreens& screens, std::function<void()> iconsChanged)
      : events_(events), screens_(screens), keeper_(events, std::move(iconsChanged)) {}

  [[nodiscard]] std::unique_ptr<platform::port::WindowPeer> createCover(
      platform::NSWindow& window, platform::port::WindowClient& client) override;

 private:
  XEvents& events_;
  const XScreens& screens_;
  CoverKeeper keeper_;
};

}  // namespace linux_desktop
