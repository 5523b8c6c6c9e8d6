#include "platform/appkit/Layout.h"

#include <array>
#include <map>
#include <optional>
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
    const bool learnt = deriveSize() || deriveLow();
    if (low && size) {
      const bool news = !high || !centre;
      high = *low + *size;
      centre = *low + *size / 2;
      return learnt || news;
    }
    return learnt;
  }

 private:
  bool deriveSize() {
    if (size) return false;
    if (low && high)
      size = *high - *low;
    else if (low && centre)
      size = 2 * (*centre - *low);
    else if (high && centre)
      size = 2 * (*high - *centre);
    return size.has_value();
  }

  bool deriveLow() {
    if (low || !size) return false;
    if (high)
      low = *high - *size;
    else if (centre)
      low = *centre - *size / 2;
    return low.has_value();
  }
};

struct Extents {
  Extent x;
  Extent y;
};

struct AttributeRow {
  NSLayoutAttribute attribute;
  Extent Extents::*axis;
  std::optional<double> Extent::*value;
};

constexpr std::array<AttributeRow, 5> kAttributes{{
    {NSLayoutAttribute::Left, &Extents::x, &Extent::low},
    {NSLayoutAttribute::Right, &Extents::x, &Extent::high},
    {NSLayoutAttribute::Width, &Extents::x, &Extent::size},
    {NSLayoutAttribute::Height, &Extents::y, &Extent::size},
    {NSLayoutAttribute::CenterY, &Extents::y, &Extent::centre},
}};

std::optional<double>& valueOf(Extents& extents, NSLayoutAttribute attribute) {
  const AttributeRow& row = kAttributes[static_cast<std::size_t>(attribute)];
  return extents.*row.axis.*row.value;
}

static_assert(
    [] {
      for (std::size_t i = 0; i < kAttributes.size(); ++i) {
        if (static_cast<std::size_t>(kAttributes[i].attribute) != i) return false;
      }
      return true;
    }(),
    "the rows stand in the order of the attributes");

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

void layoutChildren(NSView& root) {
  Propagation propagation(root);
  propagation.run();
  propagation.keepSizeOfRoot();
  propagation.run();
  propagation.apply();
}

}  // namespace platform
