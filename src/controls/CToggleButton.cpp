#include "controls/CToggleButton.h"

#include <array>

#include "platform/appkit/NSAnimationContext.h"
#include "platform/foundation/NSNotificationCenter.h"

namespace controls {

using platform::NSAnimationContext;
using platform::NSColor;
using platform::NSLayoutConstraint;
using platform::NSView;

namespace {

void replace(std::shared_ptr<NSLayoutConstraint>& constraint,
             std::shared_ptr<NSLayoutConstraint> replacement) {
  if (constraint) constraint->setActive(false);
  constraint = std::move(replacement);
  constraint->setActive(true);
}

std::shared_ptr<NSView> makeTrack() {
  auto track = std::make_shared<NSView>();
  track->setWantsLayer(true);
  track->layer()->setMasksToBounds(false);
  return track;
}

std::shared_ptr<NSView> makeKnob() {
  platform::NSShadow shadow;
  shadow.setShadowColor(NSColor::blackColor().colorWithAlphaComponent(0.4));
  shadow.setShadowOffset({0, -2});
  shadow.setShadowBlurRadius(2.0);
  auto knob = std::make_shared<NSView>();
  knob->setWantsLayer(true);
  knob->layer()->setBackgroundColor(NSColor::whiteColor());
  knob->setShadow(shadow);
  knob->layer()->setBorderWidth(2.0);
  knob->layer()->setBorderColor(NSColor::whiteColor());
  return knob;
}

}  // namespace

// --- Construction ---

CToggleButton::CToggleButton() : backVw_(makeTrack()), circle_(makeKnob()) {}

bool CToggleButton::initWithCoder(const platform::NSCoder& coder) {
  if (!NSView::initWithCoder(coder)) return false;
  backVw_->layer()->setBackgroundColor(backColor_);
  constrainTrack();
  constrainKnob();
  setTranslatesAutoresizingMaskIntoConstraints(false);
  rightAnchor().constraintEqualToAnchor(backVw_->rightAnchor())->setActive(true);
  heightAnchor().constraintEqualToConstant(height_)->setActive(true);
  updateAppearance(false);
  return true;
}

void CToggleButton::constrainTrack() {
  addSubview(backVw_);
  backVw_->setTranslatesAutoresizingMaskIntoConstraints(false);
  backVw_->leftAnchor().constraintEqualToAnchor(leftAnchor())->setActive(true);
  backVw_->widthAnchor().constraintEqualToConstant(kTrackWidth)->setActive(true);
  backVw_->heightAnchor().constraintEqualToConstant(height_)->setActive(true);
}

void CToggleButton::constrainKnob() {
  addSubview(circle_);
  circle_->setTranslatesAutoresizingMaskIntoConstraints(false);
  leftConstraint_ =
      circle_->leftAnchor().constraintEqualToAnchor(backVw_->leftAnchor(), knobOffPosition());
  circle_->centerYAnchor().constraintEqualToAnchor(centerYAnchor())->setActive(true);
  leftConstraint_->setActive(true);
  replaceWidthConstraint(knobDiameter());
  replaceHeightConstraint(knobDiameter());
}

void CToggleButton::replaceWidthConstraint(double width) {
  replace(widthConstraint_, circle_->widthAnchor().constraintEqualToConstant(width));
}

void CToggleButton::replaceHeightConstraint(double height) {
  replace(heightConstraint_, circle_->heightAnchor().constraintEqualToConstant(height));
}

// --- Look ---

void CToggleButton::updateAppearance(bool rebuildConstraints) {
  if (rebuildConstraints) {
    leftConstraint_->setConstant(knobOffPosition());
    replaceWidthConstraint(knobDiameter());
    replaceHeightConstraint(knobDiameter());
    layoutSubtreeIfNeeded();
  }
  backVw_->layer()->setCornerRadius(radius_.value_or(height_ * 0.5));
  backVw_->layer()->setBorderWidth(isOn_ ? height_ * 0.5 : outlineWidth_);
  backVw_->layer()->setBorderColor(outlineColor_);
  circle_->layer()->setCornerRadius(radius_ ? *radius_ - outlineWidth_ : knobDiameter() * 0.5);
}

void CToggleButton::animateState() {
  setAcceptsTouchEvents(false);
  NSAnimationContext::runAnimationGroup(
      [this](NSAnimationContext& context) {
        context.setDuration(kAnimationDuration);
        context.setAllowsImplicitAnimation(true);
        backVw_->animator().layer()->setBorderWidth(isOn_ ? height_ * 0.5 : outlineWidth_);
        backVw_->animator().layer()->setBorderColor(isOn_ ? fillColor_ : outlineColor_);
        replaceWidthConstraint(knobDiameter());
        leftConstraint_->setConstant(isOn_ ? knobOnPosition() : knobOffPosition());
        animator().layoutSubtreeIfNeeded();
      },
      [weak = weak_from_this()] {
        const auto self = std::static_pointer_cast<CToggleButton>(weak.lock());
        if (!self) return;
        self->setAcceptsTouchEvents(true);
        if (self->callback) self->callback(self->isOn_);
      });
}

void CToggleButton::animatePress() {
  const double stretch = knobDiameter() * 0.25;
  NSAnimationContext::runAnimationGroup([this, stretch](NSAnimationContext& context) {
    context.setDuration(kAnimationDuration);
    context.setAllowsImplicitAnimation(true);
    replaceWidthConstraint(knobDiameter() + stretch);
    // When on, the stretched knob keeps its right edge.
    if (isOn_) leftConstraint_->setConstant(knobOnPosition() - stretch);
    animator().layoutSubtreeIfNeeded();
  });
}

// --- Events ---

void CToggleButton::mouseDown(const platform::NSEvent&) {
  if (statetag != -1) animatePress();
}

void CToggleButton::mouseUp(const platform::NSEvent&) {
  if (statetag == -1) return;
  setIsOn(!isOn_);
  platform::NSNotificationCenter::defaultCenter().postNotificationName(
      kToggleNotification, nullptr, platform::Dictionary{{"isOn", isOn_}, {"index", statetag}});
}

// --- Properties ---

void CToggleButton::setIsOn(bool isOn) {
  isOn_ = isOn;
  animateState();
  didChange(platform::ViewChange::Attributes);
}

void CToggleButton::setHasToggleBorder(bool hasBorder) {
  hasToggleBorder_ = hasBorder;
  circle_->layer()->setBorderWidth(hasToggleBorder_ ? toggleBorderWidth_ : 0);
}

void CToggleButton::setOutlineWidth(double width) {
  outlineWidth_ = width;
  backVw_->layer()->setBorderWidth(outlineWidth_);
  updateAppearance(true);
}

void CToggleButton::setToggleBorderWidth(double width) {
  toggleBorderWidth_ = width;
  circle_->layer()->setBorderWidth(hasToggleBorder_ ? toggleBorderWidth_ : 0);
}

void CToggleButton::setRadius(double radius) {
  radius_ = radius;
  updateAppearance(false);
}

void CToggleButton::setOutlineColor(NSColor color) {
  outlineColor_ = color;
  backVw_->layer()->setBorderColor(outlineColor_);
}

void CToggleButton::setFillColor(NSColor color) {
  fillColor_ = color;
  if (isOn_) backVw_->layer()->setBorderColor(fillColor_);
}

void CToggleButton::setToggleColor(NSColor color) {
  toggleColor_ = color;
  circle_->setWantsLayer(true);
  circle_->layer()->setBackgroundColor(toggleColor_);
}

void CToggleButton::setBackColor(NSColor color) {
  backColor_ = color;
  backVw_->setWantsLayer(true);
  backVw_->layer()->setBackgroundColor(backColor_);
}

const platform::ClassDescription& CToggleButton::classDescription() const {
  static constexpr std::array keys{
      platform::keyValue<&CToggleButton::setIsOn>("isOn"),
      platform::keyValue<&CToggleButton::setHasToggleBorder>("hasToggleBorder"),
      platform::keyValue<&CToggleButton::setOutlineWidth>("outlineWidth"),
      platform::keyValue<&CToggleButton::setToggleBorderWidth>("toggleBorderWidth"),
      platform::keyValue<&CToggleButton::setRadius>("radius"),
      platform::keyValue<&CToggleButton::setOutlineColor>("outlineColor"),
      platform::keyValue<&CToggleButton::setFillColor>("fillColor"),
      platform::keyValue<&CToggleButton::setToggleColor>("toggleColor"),
      platform::keyValue<&CToggleButton::setBackColor>("backColor"),
  };
  static constexpr platform::ClassDescription description{.className = "CToggleButton",
                                                          .keys = keys};
  return description;
}

}  // namespace controls
