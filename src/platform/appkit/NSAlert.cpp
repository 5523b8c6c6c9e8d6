#include "platform/appkit/NSAlert.h"

#include <memory>

#include "platform/Runtime.h"
#include "platform/appkit/NSWindowController.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {
namespace {

/// The modal runs on the stack. One that is answered while another runs inside it ends after that.
class ModalRuns {
 public:
  using IsAnswered = std::function<bool()>;

  /// Handles events until `isAnswered`, or the program ends.
  void run(const IsAnswered& isAnswered) {
    isAnswered_.push_back(isAnswered);
    Runtime::current().desktop().mainLoop.run();
    isAnswered_.pop_back();
    answerArrived();
  }
  void answerArrived() const {
    if (isAnswered_.empty() || !isAnswered_.back()()) return;
    Runtime::current().desktop().mainLoop.stop();
  }

 private:
  std::vector<IsAnswered> isAnswered_;  // the innermost last
};

/// What the user answers to what `show` puts on the screen; `T{}` when the program ends before.
template <typename T, typename Show>
T answerTo(const Show& show) {
  const auto runs = Runtime::current().instance<ModalRuns>();
  // Shared, because an answer that was held back may outlive a run that the program's end cut
  // short.
  const auto answer = std::make_shared<std::optional<T>>();
  const auto peer = show([runs, answer](T given) {
    NSRunLoop::mainRunLoop().deliver([runs, answer, given = std::move(given)] {
      *answer = given;
      runs->answerArrived();
    });
  });
  runs->run([answer] { return answer->has_value(); });
  return answer->value_or(T{});
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
