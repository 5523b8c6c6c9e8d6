#include "platform/appkit/NSLayoutConstraint.h"

#include <map>
#include <utility>

#include "platform/appkit/NSView.h"

namespace platform {
namespace {

/// What is known of one view along one axis, in the coordinates of the root.
struct Extent {
  std::optional<double> low;   // left or bottom
  std::optional<double> high;  // right or top
  std::optional<double> size;
  std::optional<double> centre;

  /// Derives what two known values say about the others. True if something was learnt.
  bool derive() {
    const Extent before = *this;
    if (!size && low && high) size = *high - *low;
    if (!size && low && centre) size = 2 * (*centre - *low);
    if (!size && high && centre) size = 2 * (*high - *centre);
    if (!low && size && high) low = *high - *size;
    if (!low && size && centre) low = *centre - *size / 2;
    if (low && size) {
      high = *low + *size;
      centre = *low + *size / 2;
    }
    return *this != before;
  }

  bool operator==(const Extent&) const = default;
};

struct Extents {
  Extent x;
  Extent y;
};

std::optional<double>& valueOf(Extents& extents, NSLayoutAttribute attribute) {
  switch (attribute) {
    case NSLayoutAttribute::Left:
      return extents.x.low;
    case NSLayoutAttribute::Right:
      return extents.x.high;
    case NSLayoutAttribute::Width:
      return extents.x.size;
    case NSLayoutAttribute::Height:
      return extents.y.size;
    case NSLayoutAttribute::CenterY:
      break;
  }
  return extents.y.centre;
}

class Propagation {
 public:
  explicit Propagation(NSView& root) : root_(root) {
    Extents& own = extents_[&root];
    own.x.low = own.y.low = 0;
    if (root.translatesAutoresizingMaskIntoConstraints()) {
      own.x.size = root.frame().width;
      own.y.size = root.frame().height;
    }
    for (const auto& view : root.subviews()) addSubview(*view);
  }

  void run() {
    for (bool learnt = true; learnt;) {
      learnt = false;
      for (auto& [view, extents] : extents_) {
        learnt = extents.x.derive() || learnt;
        learnt = extents.y.derive() || learnt;
        for (const auto& constraint : view->constraints()) learnt = pass(*constraint) || learnt;
      }
    }
  }

  /// What the constraints here leave open of the root's size has been decided above it.
  void keepSizeOfRoot() {
    Extents& own = extents_.at(&root_);
    if (!own.x.size) own.x.size = root_.frame().width;
    if (!own.y.size) own.y.size = root_.frame().height;
  }

  void apply() {
    for (const auto& view : root_.subviews()) {
      view->setFrame(frameFrom(extents_.at(view.get()), view->frame()));
    }
    if (root_.translatesAutoresizingMaskIntoConstraints()) return;
    NSRect frame = root_.frame();
    frame.width = extents_.at(&root_).x.size.value_or(frame.width);
    frame.height = extents_.at(&root_).y.size.value_or(frame.height);
    root_.setFrame(frame);
  }

 private:
  void addSubview(NSView& view) {
    Extents& extents = extents_[&view];
    if (!view.translatesAutoresizingMaskIntoConstraints()) return;
    extents.x.low = view.frame().x;
    extents.x.size = view.frame().width;
    extents.y.low = view.frame().y;
    extents.y.size = view.frame().height;
  }

  bool pass(const NSLayoutConstraint& constraint) {
    std::optional<double>* first = slot(constraint.firstAnchor());
    if (first == nullptr) return false;
    if (!constraint.secondAnchor()) {
      if (*first) return false;
      *first = constraint.constant();
      return true;
    }
    std::optional<double>* second = slot(*constraint.secondAnchor());
    if (second == nullptr || first->has_value() == second->has_value()) return false;
    if (*second)
      *first = **second + constraint.constant();
    else
      *second = **first - constraint.constant();
    return true;
  }

  std::optional<double>* slot(const NSLayoutAnchor& anchor) {
    const auto found = extents_.find(anchor.view().get());
    return found == extents_.end() ? nullptr : &valueOf(found->second, anchor.attribute());
  }

  static NSRect frameFrom(const Extents& extents, const NSRect& old) {
    return {extents.x.low.value_or(old.x), extents.y.low.value_or(old.y),
            extents.x.size.value_or(old.width), extents.y.size.value_or(old.height)};
  }

  NSView& root_;
  std::map<NSView*, Extents> extents_;
};

}  // namespace

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

void layoutChildren(NSView& root) {
  Propagation propagation(root);
  propagation.run();
  propagation.keepSizeOfRoot();
  propagation.run();
  propagation.apply();
}

}  // namespace platform
