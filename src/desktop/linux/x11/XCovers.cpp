#include "desktop/linux/x11/XCovers.h"

#include <utility>

namespace linux_desktop {

XCoverWindow::XCoverWindow(platform::NSWindow& window, XEvents& events, const XScreens& screens,
                           CoverKeeper& keeper)
    : CoverPeer(window), events_(events), screens_(screens), keeper_(keeper) {}

XCoverWindow::~XCoverWindow() {
  hide();
}

std::optional<QRect> XCoverWindow::place() const {
  return screens_.points(window().frame());
}

bool XCoverWindow::fits(const XPicture& picture, const QRect& place) const {
  return picture.size() == place.size();
}

std::unique_ptr<CoverSurface> XCoverWindow::make(const QRect& place,
                                                 std::shared_ptr<const XPicture> picture,
                                                 std::function<void()> arrived) {
  const CoverStand stand = stand_ ? *std::exchange(stand_, std::nullopt) : keeper_.standFor(place);
  auto surface =
      std::make_unique<CoverSurface>(events_, place, std::move(picture), stand, std::move(arrived));
  surface->map();
  return surface;
}

void XCoverWindow::remake(const CoverStand& stand) {
  stand_ = stand;
  putUp(surface()->place(), surface()->picture());
}

std::unique_ptr<platform::port::WindowPeer> XCovers::createCover(platform::NSWindow& window,
                                                                 platform::port::WindowClient&) {
  return std::make_unique<XCoverWindow>(window, events_, screens_, keeper_);
}

}  // namespace linux_desktop
