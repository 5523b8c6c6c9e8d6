#include "desktop/linux/x11/XCovers.h"

#include <utility>

#include "desktop/linux/windowsystem/DesktopView.h"
#include "platform/appkit/NSWindow.h"

namespace linux_desktop {
XCoverWindow::XCoverWindow(platform::NSWindow& window, XEvents& events, const XScreens& screens,
                           CoverKeeper& keeper)
    : window_(window), events_(events), screens_(screens), keeper_(keeper) {}

XCoverWindow::~XCoverWindow() {
  XCoverWindow::hide();
}

void XCoverWindow::show(const platform::port::Placement&) {
  if (!std::exchange(shown_, true)) keeper_.add(*this);
  apply();
}

void XCoverWindow::hide() {
  if (!std::exchange(shown_, false)) return;
  keeper_.remove(*this);
  leaving_.reset();
  surface_.reset();
}

void XCoverWindow::update(const std::vector<platform::port::ChangedView>&, bool) {
  if (shown_) apply();
}

void XCoverWindow::apply() {
  const auto picture = std::dynamic_pointer_cast<const XPicture>(pictureIn(window_));
  const QRect area = screens_.pixels(window_.frame());
  if (!picture || picture->size() != area.size()) return;
  if (!surface_ || surface_->area() != area) {
    putUp(area, picture, keeper_.standFor(area));
  } else if (surface_->picture() != picture) {
    surface_->setPicture(picture);
  }
}

void XCoverWindow::putUp(const QRect& area, const std::shared_ptr<const XPicture>& picture,
                         const CoverStand& stand) {
  leaving_ = std::move(surface_);
  surface_ = std::make_unique<CoverSurface>(events_, area, picture, stand, [this, area] {
    leaving_.reset();
    keeper_.arrived(*this, area);
  });
  surface_->map();
}

void XCoverWindow::giveWay(const QRect& area) {
  if (!surface_ || !surface_->area().intersects(area)) return;
  if (surface_->area() != screens_.pixels(window_.frame())) surface_.reset();
}

void XCoverWindow::remake(const CoverStand& stand) {
  const QRect area = surface_->area();
  putUp(area, surface_->picture(), stand);
}

std::unique_ptr<platform::port::WindowPeer> XCovers::createCover(platform::NSWindow& window,
                                                                 platform::port::WindowClient&) {
  // Nothing that a user does to a cover is told to anybody.
  return std::make_unique<XCoverWindow>(window, events_, screens_, keeper_);
}

}  // namespace linux_desktop
