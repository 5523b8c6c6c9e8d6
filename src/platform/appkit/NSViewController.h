#pragma once

#include <any>
#include <functional>
#include <memory>

#include "platform/appkit/NSView.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/Process.h"

namespace platform {

/// Owns a tree of views and follows it through its life. The view is loaded the first time that it
/// is asked for; the window that shows it calls the four that follow, each time.
class NSViewController : public NSObject {
 public:
  /// Makes the view and connects the controller's outlets. Set by the storyboard.
  using Loader = std::function<std::shared_ptr<NSView>(NSViewController& controller)>;
  void setLoader(Loader loader) { loader_ = std::move(loader); }

  [[nodiscard]] const std::shared_ptr<NSView>& view() {
    if (view_) return view_;
    if (!loader_) programmingError("a view controller was asked for a view that nobody described");
    view_ = loader_(*this);
    viewDidLoad();
    return view_;
  }
  void loadViewIfNeeded() { static_cast<void>(view()); }
  [[nodiscard]] bool isViewLoaded() const { return view_ != nullptr; }

  /// Once, when the view has loaded and the outlets are connected.
  virtual void viewDidLoad() {}
  virtual void viewWillAppear() {}
  virtual void viewDidAppear() {}
  virtual void viewWillDisappear() {}
  virtual void viewDidDisappear() {}

  /// What the view stands for, for the owner's own use.
  [[nodiscard]] virtual std::any representedObject() const { return representedObject_; }
  virtual void setRepresentedObject(std::any object) { representedObject_ = std::move(object); }

 private:
  Loader loader_;
  std::shared_ptr<NSView> view_;
  std::any representedObject_;
};

}  // namespace platform
