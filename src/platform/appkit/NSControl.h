#pragma once

#include <memory>

#include "platform/appkit/NSView.h"

namespace platform {

/// A view that sends its action when it is pressed and let go.
class NSControl : public NSView {
 public:
  [[nodiscard]] const SEL& action() const { return action_; }
  void setAction(SEL action) { action_ = std::move(action); }
  /// Null, as at first: the action travels the responder chain.
  void setTarget(const std::shared_ptr<NSObject>& target) { target_ = target; }

  [[nodiscard]] bool initWithCoder(const NSCoder& coder) override;
  void mouseUp(const NSEvent& event) override;

 private:
  SEL action_;
  std::weak_ptr<NSObject> target_;
};

}  // namespace platform
