#include "desktop/linux/x11/XCovers.h"

#include "desktop/linux/x11/XCoverWindow.h"

namespace linux_desktop {

std::unique_ptr<platform::port::WindowPeer> XCovers::createCover(platform::NSWindow& window,
                                                                 platform::port::WindowClient&) {
  // Nothing that a user does to a cover is told to anybody.
  return std::make_unique<XCoverWindow>(window, events_, screens_, keeper_);
}

}  // namespace linux_desktop
