#include "platform/appkit/NSScreen.h"

#include "platform/Runtime.h"

namespace platform {

std::vector<std::shared_ptr<NSScreen>> NSScreen::screens() {
  std::vector<std::shared_ptr<NSScreen>> screens;
  for (port::ScreenInfo& info : Runtime::current().desktop().screens.screens()) {
    screens.push_back(std::make_shared<NSScreen>(std::move(info)));
  }
  return screens;
}

}  // namespace platform
