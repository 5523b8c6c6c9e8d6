#include "desktop/linux/x11/XWindowList.h"

#include "platform/coregraphics/CGWindow.h"

namespace linux_desktop {

// A desktop picture's number is one more than its screen's place in the list.

std::optional<std::vector<platform::Dictionary>> XWindowList::windowsOnScreen() const {
  std::vector<platform::Dictionary> windows;
  std::int64_t number = 0;
  for (const Monitor& monitor : screens_.monitors()) {
    platform::Dictionary window;
    window.emplace(platform::kCGWindowOwnerName, "Dock");
    window.emplace(platform::kCGWindowName, "Desktop Picture - " + monitor.name.toStdString());
    window.emplace(platform::kCGWindowNumber, ++number);
    windows.push_back(std::move(window));
  }
  return windows;
}

std::shared_ptr<const platform::port::Capture> XWindowList::capture(std::uint32_t windowNumber) {
  const auto& monitors = screens_.monitors();
  if (windowNumber < 1 || windowNumber > monitors.size()) return nullptr;
  return std::make_shared<DesktopCapture>(pictures_, monitors[windowNumber - 1]);
}

}  // namespace linux_desktop
