#include "platform/appkit/NSLayoutConstraint.h"

#include <algorithm>

#include "platform/appkit/NSView.h"

namespace platform {

std::shared_ptr<NSLayoutConstraint> NSLayoutAnchor::constraintEqualToAnchor(
    const NSLayoutAnchor& other, double constant) const {
  return std::make_shared<NSLayoutConstraint>(*this, other, constant);
}

std::shared_ptr<NSLayoutConstraint> NSLayoutAnchor::constraintEqualToConstant(
    double constant) const {
  return std::make_shared<NSLayoutConstraint>(*this, std::nullopt, constant);
}

NSLayoutConstraint::NSLayoutConstraint(NSLayoutAnchor first, std::optional<NSLayoutAnchor> second,
                                       double constant)
    : first_(std::move(first)), second_(std::move(second)), constant_(constant) {}

void NSLayoutConstraint::setConstant(double constant) {
  constant_ = constant;
  needsLayout();
}

void NSLayoutConstraint::setActive(bool active) {
  const std::shared_ptr<NSView> view = first_.view();
  if (active == active_ || !view) return;
  active_ = active;
  needsLayout();
  auto& held = view->constraints();
  if (active) {
    held.push_back(std::static_pointer_cast<NSLayoutConstraint>(shared_from_this()));
  } else {
    std::erase_if(held, [this](const auto& constraint) { return constraint.get() == this; });
  }
}

void NSLayoutConstraint::needsLayout() const {
  if (const auto view = first_.view()) view->setNeedsLayout();
}

}  // namespace platform
