#include "platform/appkit/NSAlert.h"

#include <memory>

#include "platform/Runtime.h"
#include "platform/appkit/NSWindowController.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {
namespace {

/// What the user answers to what `show` puts on the screen; `T{}` when the program ends before.
template <typename T, typename Show>
T answerTo(const Show& show) {
  port::MainLoop& loop = Runtime::current().desktop().mainLoop;
  // Shared, because an answer that was held back may outlive a run that the program's end cut
  // short.
  const auto answer = std::make_shared<T>();
  const auto peer = show([&loop, answer](T given) {
    NSRunLoop::mainRunLoop().deliver([&loop, answer, given = std::move(given)] {
      *answer = given;
      loop.stop();
    });
  });
  loop.run();
  return *answer;
}

}  // namespace

int NSAlert::runModal() const {
  port::Windows& windows = Runtime::current().desktop().windows;
  const auto button = answerTo<std::size_t>(
      [&](auto answered) { return windows.showAlert(*this, std::move(answered)); });
  return kFirstButtonReturn + static_cast<int>(button);
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

NSModalResponse NSOpenPanel::runModal() {
  port::Windows& windows = Runtime::current().desktop().windows;
  const auto path = answerTo<std::optional<std::string>>(
      [&](auto answered) { return windows.showOpenPanel(*this, std::move(answered)); });
  url_.reset();
  if (!path) return NSModalResponse::Cancel;
  url_ = NSURL::fileURLWithPath(*path);
  return NSModalResponse::OK;
}

}  // namespace platform
