#include "platform/appkit/NSViewController.h"

#include "platform/foundation/Process.h"

namespace platform {

const std::shared_ptr<NSView>& NSViewController::view() {
  if (view_) return view_;
  if (!loader_) programmingError("a view controller was asked for a view that nobody described");
  view_ = loader_(*this);
  viewDidLoad();
  return view_;
}

}  // namespace platform
