#include "platform/coregraphics/CGWindow.h"

#include "platform/Runtime.h"

namespace platform {

CGWindowLevel CGWindowLevelForKey(CGWindowLevelKey key) {
  constexpr CGWindowLevel kBackstopMenuLevel = -20;
  return key == CGWindowLevelKey::BackstopMenu ? kBackstopMenuLevel : 0;
}

std::optional<std::vector<Dictionary>> CGWindowListCopyWindowInfo() {
  const port::WindowList* list = Runtime::current().desktop().windowList;
  return list == nullptr ? std::nullopt : list->windowsOnScreen();
}

CGImage CGWindowListCreateImage(CGWindowID window) {
  port::WindowList* list = Runtime::current().desktop().windowList;
  return list == nullptr ? nullptr : list->capture(window);
}

}  // namespace platform
