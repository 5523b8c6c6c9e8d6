#include "platform/appkit/NSView.h"

#include <algorithm>

#include "platform/appkit/NSWindow.h"

namespace platform {

NSView::~NSView() {
  for (const auto& view : subviews_) view->superview_ = nullptr;
}

bool NSView::initWithCoder(const NSCoder& coder) {
  return coder.read("accessibilityLabel", accessibilityLabel_) &&
         coder.read("accessibilityHelp", accessibilityHelp_) && coder.read("hidden", hidden_) &&
         coder.read("contentScale", contentScale_) && contentScale_ > 0;
}

// --- The tree ---

void NSView::addSubview(const std::shared_ptr<NSView>& view) {
  view->removeFromSuperview();
  view->superview_ = this;
  subviews_.push_back(view);
  view->setWindow(window_);
  setNeedsLayout();
  didChange(ViewChange::Subviews);
}

void NSView::removeFromSuperview() {
  if (superview_ == nullptr) return;
  const std::shared_ptr<NSObject> self = shared_from_this();
  NSView& parent = *superview_;
  std::erase_if(parent.subviews_, [this](const auto& view) { return view.get() == this; });
  superview_ = nullptr;
  setWindow(nullptr);
  parent.didChange(ViewChange::Subviews);
}

void NSView::setWindow(NSWindow* window) {
  window_ = window;
  for (const auto& view : subviews_) view->setWindow(window);
}

void NSView::didChange(ViewChange change) {
  if (window_ != nullptr) window_->viewDidChange(*this, change);
}

// --- Geometry and layout ---

void NSView::setFrame(NSRect frame) {
  const NSRect old = frame_.model();
  if (frame == old) return;
  // A view appears at its first place; it does not slide there from nowhere.
  frame_.set(frame, old == NSRect{} ? std::nullopt : NSAnimationContext::implicitTiming());
  if (frame.width != old.width || frame.height != old.height) setNeedsLayout();
  didChange(ViewChange::Frame);
}

void NSView::setContentScale(double scale) {
  contentScale_ = scale;
  didChange(ViewChange::Frame);
}

bool NSView::isAnimating(MonotonicTime time) const {
  return frame_.isAnimating(time) || (layer_ && layer_->isAnimating(time)) ||
         std::ranges::any_of(subviews_,
                             [time](const auto& view) { return view->isAnimating(time); });
}

NSLayoutAnchor NSView::anchor(NSLayoutAttribute attribute) {
  return {std::static_pointer_cast<NSView>(shared_from_this()), attribute};
}

void NSView::setTranslatesAutoresizingMaskIntoConstraints(bool translates) {
  translates_ = translates;
  setNeedsLayout();
}

void NSView::setNeedsLayout() {
  for (NSView* view = this; view != nullptr; view = view->superview_) view->needsLayout_ = true;
}

void NSView::layoutSubtreeIfNeeded() {
  if (!needsLayout_) return;
  layoutChildren(*this);
  for (const auto& view : subviews_) view->layoutSubtreeIfNeeded();
  // Last: frames that were just given ask for a layout above them.
  needsLayout_ = false;
}

// --- Look ---

void NSView::setWantsLayer(bool wants) {
  if (wants == (layer_ != nullptr)) return;
  layer_ = wants ? std::make_unique<CALayer>([this] { didChange(ViewChange::Layer); }) : nullptr;
  didChange(ViewChange::Layer);
}

void NSView::setShadow(NSShadow shadow) {
  shadow_ = shadow;
  didChange(ViewChange::Layer);
}

void NSView::setHidden(bool hidden) {
  hidden_ = hidden;
  didChange(ViewChange::Hidden);
}

// --- Events and assistive technology ---

void NSView::setAccessibilityLabel(std::string label) {
  accessibilityLabel_ = std::move(label);
  didChange(ViewChange::Attributes);
}

void NSView::setAccessibilityHelp(std::string help) {
  if (help == accessibilityHelp_) return;
  accessibilityHelp_ = std::move(help);
  didChange(ViewChange::Attributes);
}

// --- Stacks ---

template <>
std::optional<NSStackView::Orientation> attributeFromText<NSStackView::Orientation>(
    std::string_view text) {
  static constexpr NamedValue<NSStackView::Orientation> orientations[] = {
      {"vertical", NSStackView::Orientation::Vertical},
      {"horizontal", NSStackView::Orientation::Horizontal},
  };
  return valueNamed(text, orientations);
}

bool NSStackView::initWithCoder(const NSCoder& coder) {
  return NSView::initWithCoder(coder) && coder.read("orientation", orientation_) &&
         coder.read("fills", fills_) && coder.read("spacing", spacing_) &&
         coder.read("top", insets_.top) && coder.read("left", insets_.left) &&
         coder.read("bottom", insets_.bottom) && coder.read("right", insets_.right);
}

}  // namespace platform
