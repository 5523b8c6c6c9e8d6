#include "platform/appkit/NSOpenPanel.h"

#include <memory>

#include "platform/Runtime.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {

NSModalResponse NSOpenPanel::runModal() {
  const Desktop& desktop = Runtime::current().desktop();
  // Shared, because an answer that was held back may outlive a run that the program's end cut
  // short.
  const auto chosen = std::make_shared<std::optional<std::string>>();
  const auto peer =
      desktop.windows.showOpenPanel(*this, [&desktop, chosen](std::optional<std::string> path) {
        NSRunLoop::mainRunLoop().deliver([&desktop, chosen, path = std::move(path)] {
          *chosen = path;
          desktop.mainLoop.stop();
        });
      });
  desktop.mainLoop.run();
  url_.reset();
  if (!*chosen) return NSModalResponse::Cancel;
  url_ = NSURL::fileURLWithPath(**chosen);
  return NSModalResponse::OK;
}

}  // namespace platform
