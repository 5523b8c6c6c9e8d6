#include "platform/appkit/NSAlert.h"

#include <memory>

#include "platform/Runtime.h"
#include "platform/appkit/NSWindowController.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {

int NSAlert::runModal() const {
  const Desktop& desktop = Runtime::current().desktop();
  // Shared, because an answer that was held back may outlive a run that the program's end cut
  // short.
  const auto answer = std::make_shared<std::size_t>(0);
  const auto peer = desktop.windows.showAlert(*this, [&desktop, answer](std::size_t chosen) {
    NSRunLoop::mainRunLoop().deliver([&desktop, answer, chosen] {
      *answer = chosen;
      desktop.mainLoop.stop();
    });
  });
  desktop.mainLoop.run();
  return kFirstButtonReturn + static_cast<int>(*answer);
}

void NSAlert::beginSheetModalForWindow(NSWindow& window,
                                       std::function<void(int response)> completionHandler) const {
  if (!window.isVisible()) {
    if (const auto controller = window.windowController())
      controller->showWindow(nullptr);
    else
      window.show(port::PlacedByDesktop{});
  }
  window.beginSheet(*this, std::move(completionHandler));
}

}  // namespace platform
