#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/appkit/NSView.h"

namespace controls {

/// The switch of the panel: a rounded track, 34 by 16 points, with a knob that slides.
///
/// Whoever flips it (mouse, keyboard, assistive technology) does so by a press and a release; the
/// release posts the notification "toggle" with the user info "isOn" (Bool, the new state) and
/// "index" (integer, `statetag`), from no sender. Setting `isOn` posts nothing. All lengths are
/// points. Main thread only.
class CToggleButton final : public platform::NSView {
 public:
  /// The name of the notification that a release posts.
  static constexpr const char* kToggleNotification = "toggle";

  /// A switch is always built from an interface description, see `initWithCoder`.
  CToggleButton();
  [[nodiscard]] bool initWithCoder(const platform::NSCoder& coder) override;

  /// Goes out as "index". With -1 the switch ignores the mouse.
  std::int64_t statetag = 0;
  /// Called with the state each time that a slide has ended.
  std::function<void(bool isOn)> callback;

  [[nodiscard]] bool isOn() const { return isOn_; }
  /// Slides to the state, also to the one it already has.
  void setIsOn(bool isOn);
  [[nodiscard]] bool hasToggleBorder() const { return hasToggleBorder_; }
  void setHasToggleBorder(bool hasBorder);
  [[nodiscard]] double outlineWidth() const { return outlineWidth_; }
  /// The border of the track when off, and the room between knob and track. Puts the knob where it
  /// is when off; the next change of state puts it right.
  void setOutlineWidth(double width);
  [[nodiscard]] double toggleBorderWidth() const { return toggleBorderWidth_; }
  void setToggleBorderWidth(double width);
  /// The corner radius that was set, or the knob's own while none was.
  [[nodiscard]] double radius() const { return radius_.value_or(knobDiameter() * 0.5); }
  void setRadius(double radius);
  [[nodiscard]] const platform::NSColor& outlineColor() const { return outlineColor_; }
  /// The track's border when off. Shows at once, whatever the state.
  void setOutlineColor(platform::NSColor color);
  [[nodiscard]] const platform::NSColor& fillColor() const { return fillColor_; }
  /// The whole track when on. Shows at once only while the switch is on.
  void setFillColor(platform::NSColor color);
  [[nodiscard]] const platform::NSColor& toggleColor() const { return toggleColor_; }
  void setToggleColor(platform::NSColor color);
  [[nodiscard]] const platform::NSColor& backColor() const { return backColor_; }
  void setBackColor(platform::NSColor color);

  /// The track and, in front of it, the knob.
  [[nodiscard]] const std::shared_ptr<platform::NSView>& backVw() const { return backVw_; }
  [[nodiscard]] const std::shared_ptr<platform::NSView>& circle() const { return circle_; }

  void mouseDown(const platform::NSEvent& event) override;
  void mouseUp(const platform::NSEvent& event) override;
  [[nodiscard]] bool acceptsFirstResponder() const override { return statetag != -1; }
  [[nodiscard]] platform::NSAccessibilityRole accessibilityRole() const override {
    return platform::NSAccessibilityRole::Switch;
  }
  [[nodiscard]] std::optional<bool> accessibilityValue() const override { return isOn_; }
  [[nodiscard]] const platform::ClassDescription& classDescription() const override;

 private:
  static constexpr double kTrackWidth = 34.0;
  static constexpr double kAnimationDuration = 0.3;

  [[nodiscard]] double knobDiameter() const { return height_ - 2 * outlineWidth_; }
  [[nodiscard]] double knobOffPosition() const { return outlineWidth_; }
  [[nodiscard]] double knobOnPosition() const { return outlineWidth_ + kTrackWidth - height_; }

  void constrainTrack();
  void constrainKnob();
  void updateAppearance(bool rebuildConstraints);
  void animateState();
  void animatePress();
  void replaceWidthConstraint(double width);
  void replaceHeightConstraint(double height);

  double height_ = 16.0;
  std::shared_ptr<platform::NSLayoutConstraint> leftConstraint_;
  std::shared_ptr<platform::NSLayoutConstraint> heightConstraint_;
  std::shared_ptr<platform::NSLayoutConstraint> widthConstraint_;
  std::shared_ptr<platform::NSView> backVw_;
  std::shared_ptr<platform::NSView> circle_;
  std::optional<double> radius_;
  bool isOn_ = false;
  bool hasToggleBorder_ = true;
  double outlineWidth_ = 2.0;
  double toggleBorderWidth_ = 2.0;
  platform::NSColor outlineColor_ = platform::NSColor::lightGrayColor();
  platform::NSColor fillColor_ = platform::NSColor::lightGrayColor();
  platform::NSColor toggleColor_ = platform::NSColor::whiteColor();
  platform::NSColor backColor_ = platform::NSColor::whiteColor();
};

}  // namespace controls
