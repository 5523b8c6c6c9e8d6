#pragma once

#include <memory>
#include <optional>

#include "platform/foundation/NSObject.h"

namespace platform {

class NSView;

/// An edge, centre line or extent of a view that constraints speak of.
enum class NSLayoutAttribute { Left, Right, Width, Height, CenterY };

/// One anchor of one view. A value that refers to the view weakly.
class NSLayoutAnchor {
 public:
  NSLayoutAnchor(std::weak_ptr<NSView> view, NSLayoutAttribute attribute)
      : view_(std::move(view)), attribute_(attribute) {}

  [[nodiscard]] std::shared_ptr<NSView> view() const { return view_.lock(); }
  [[nodiscard]] NSLayoutAttribute attribute() const { return attribute_; }

  /// This anchor equals `other`, plus `constant` points. The new constraint is not active yet.
  [[nodiscard]] std::shared_ptr<class NSLayoutConstraint> constraintEqualToAnchor(
      const NSLayoutAnchor& other, double constant = 0) const;
  /// This extent equals `constant` points.
  [[nodiscard]] std::shared_ptr<class NSLayoutConstraint> constraintEqualToConstant(
      double constant) const;

 private:
  std::weak_ptr<NSView> view_;
  NSLayoutAttribute attribute_;
};

/// An equality between two anchors, or between an anchor and a number. An active constraint is held
/// by the view of its first anchor, and what it says holds after the next layout of a view above
/// both. Constraints that contradict each other are not resolved: which one holds is open.
class NSLayoutConstraint final : public NSObject {
 public:
  NSLayoutConstraint(NSLayoutAnchor first, std::optional<NSLayoutAnchor> second, double constant);

  [[nodiscard]] const NSLayoutAnchor& firstAnchor() const { return first_; }
  [[nodiscard]] const std::optional<NSLayoutAnchor>& secondAnchor() const { return second_; }
  [[nodiscard]] double constant() const { return constant_; }
  void setConstant(double constant);
  [[nodiscard]] bool isActive() const { return active_; }
  void setActive(bool active);

 private:
  void needsLayout() const;

  NSLayoutAnchor first_;
  std::optional<NSLayoutAnchor> second_;
  double constant_;
  bool active_ = false;
};

/// Gives the subviews of `root`, and `root` itself where it leaves its size to constraints, the
/// frames that the active constraints among them say. Each is an equality, so what is known is
/// passed along them until nothing new comes to be known; what stays unknown keeps its value.
void layoutChildren(NSView& root);

}  // namespace platform
