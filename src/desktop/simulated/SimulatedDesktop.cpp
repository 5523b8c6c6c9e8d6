#include "desktop/simulated/SimulatedDesktop.h"

#include "platform/appkit/NSWorkspace.h"

namespace simulated {

void SimulatedDesktop::countObservers() {
  if (!screen.covers().empty()) return;
  observers_ += platform::NSWorkspace::sharedWorkspace().notificationCenter().observerCount(
      platform::NSWorkspaceActiveSpaceDidChangeNotification);
  observers_ += platform::NSNotificationCenter::defaultCenter().observerCount(
      platform::NSApplicationDidChangeScreenParametersNotification);
}

std::vector<std::string> SimulatedDesktop::leftBehind() const {
  std::vector<std::string> left;
  if (loop.pendingTimers() != 0) {
    left.push_back(std::to_string(loop.pendingTimers()) + " timers");
  }
  if (screen.windowCount() != 0) left.push_back(std::to_string(screen.windowCount()) + " windows");
  if (!screen.alerts().empty()) left.push_back(std::to_string(screen.alerts().size()) + " alerts");
  if (observers_ != 0) left.push_back(std::to_string(observers_) + " observers");
  if (tray.hasItem()) left.emplace_back("a status item");
  for (const auto& [keyCode, modifiers] : keys.held()) {
    left.push_back("the hot key " + std::to_string(keyCode) + " " + std::to_string(modifiers));
  }
  if (keys.hasClient()) left.emplace_back("a client of the hot keys");
  if (displays.hasClient()) left.emplace_back("a client of the screens");
  if (workspaces.hasClient()) left.emplace_back("a client of the spaces");
  if (availability.hasClient()) left.emplace_back("a client of the availability");
  return left;
}

}  // namespace simulated
