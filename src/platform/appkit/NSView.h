#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/appkit/CALayer.h"
#include "platform/appkit/NSAnimationContext.h"
#include "platform/appkit/NSEvent.h"
#include "platform/appkit/NSLayoutConstraint.h"
#include "platform/foundation/NSCoder.h"
#include "platform/foundation/NSObject.h"

namespace platform {

/// What kind of thing a view is to assistive technology.
enum class NSAccessibilityRole { Unknown, Group, StaticText, Image, Switch, Button, CheckBox };

class NSView;
class NSWindow;

/// What changed about a view; a set of bits.
enum class ViewChange : std::uint32_t {
  Layer = 1,       ///< the look of its layer, or its shadow
  Frame = 2,       ///< where it is or how large
  Subviews = 4,    ///< views were added to it or taken from it
  Content = 8,     ///< its text, image, title, state or border
  Hidden = 16,     ///< whether it is hidden
  Attributes = 32  ///< what assistive technology is told of it, or whether it is enabled
};

[[nodiscard]] constexpr ViewChange operator|(ViewChange a, ViewChange b) {
  return static_cast<ViewChange>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}
[[nodiscard]] constexpr bool includes(ViewChange set, ViewChange change) {
  return (static_cast<std::uint32_t>(set) & static_cast<std::uint32_t>(change)) != 0;
}

/// Which native control, if any, stands for a view. A desktop has one row for each.
enum class NSViewKind {
  Custom,  ///< painted from its layer and those of its subviews
  Stack,
  Label,
  Image,
  Separator,
  Button,
  Checkbox,
  Box,  ///< a frame around its one subview
};

/// A rectangle of a window: a node of the observable model that a window's peer shows.
///
/// A view owns its subviews. Frames are in the superview's coordinates, in points, y up. Inside a
/// stack the desktop places and sizes the views by its own fonts and spacing; inside a custom view
/// layout constraints do.
class NSView : public NSObject {
 public:
  ~NSView() override;

  /// The view itself; its subviews are the storyboard's affair.
  [[nodiscard]] bool initWithCoder(const NSCoder& coder) override;

  [[nodiscard]] virtual NSViewKind kind() const { return NSViewKind::Custom; }

  // --- The tree ---
  void addSubview(const std::shared_ptr<NSView>& view);
  void removeFromSuperview();
  [[nodiscard]] const std::vector<std::shared_ptr<NSView>>& subviews() const { return subviews_; }
  [[nodiscard]] NSView* superview() const { return superview_; }
  /// The window that the view is in, or null. It is told of every change, once for each setter
  /// call.
  [[nodiscard]] NSWindow* window() const { return window_; }
  /// Called by the window that shows the tree; null takes it out again.
  void setWindow(NSWindow* window);

  // --- Geometry ---
  [[nodiscard]] const NSRect& frame() const { return frame_.model(); }
  void setFrame(NSRect frame);
  [[nodiscard]] NSRect bounds() const { return {0, 0, frame().width, frame().height}; }
  /// Where the view is on the screen at `time`.
  [[nodiscard]] NSRect presentationFrame(MonotonicTime time) const {
    return frame_.presentation(time);
  }
  /// Whether the view or one below it is moving or changing its look at `time`.
  [[nodiscard]] bool isAnimating(MonotonicTime time) const;
  /// How many points of the superview one point inside this view takes; 1 at first. Enlarges the
  /// view and all in it, crisply.
  [[nodiscard]] double contentScale() const { return contentScale_; }
  void setContentScale(double scale);

  // --- Layout ---
  [[nodiscard]] NSLayoutAnchor leftAnchor() { return anchor(NSLayoutAttribute::Left); }
  [[nodiscard]] NSLayoutAnchor rightAnchor() { return anchor(NSLayoutAttribute::Right); }
  [[nodiscard]] NSLayoutAnchor widthAnchor() { return anchor(NSLayoutAttribute::Width); }
  [[nodiscard]] NSLayoutAnchor heightAnchor() { return anchor(NSLayoutAttribute::Height); }
  [[nodiscard]] NSLayoutAnchor centerYAnchor() { return anchor(NSLayoutAttribute::CenterY); }
  /// While true (at first) the view's frame is what was set; otherwise constraints decide it.
  [[nodiscard]] bool translatesAutoresizingMaskIntoConstraints() const { return translates_; }
  void setTranslatesAutoresizingMaskIntoConstraints(bool translates);
  /// Brings the frames of this view and all below it in line with the active constraints. What no
  /// constraint decides keeps its value. Does nothing when nothing has changed since.
  void layoutSubtreeIfNeeded();
  void setNeedsLayout();
  /// The active constraints whose first anchor is this view's. For NSLayoutConstraint and layout.
  [[nodiscard]] std::vector<std::shared_ptr<NSLayoutConstraint>>& constraints() {
    return constraints_;
  }

  // --- Look ---
  /// A view has a layer once it wants one.
  void setWantsLayer(bool wants);
  [[nodiscard]] CALayer* layer() const { return layer_.get(); }
  [[nodiscard]] const std::optional<NSShadow>& shadow() const { return shadow_; }
  void setShadow(NSShadow shadow);
  [[nodiscard]] bool isHidden() const { return hidden_; }
  void setHidden(bool hidden);
  /// What changes that animate inside the current group are made through: the view itself, since
  /// in a group that allows implicit animation all of them do.
  [[nodiscard]] NSView& animator() { return *this; }

  // --- Events ---
  virtual void mouseDown(const NSEvent& /*event*/) {}
  virtual void mouseUp(const NSEvent& /*event*/) {}
  /// Whether the keyboard can reach the view. A key press or assistive action on such a view is
  /// reported as a mouse press and release on it.
  [[nodiscard]] virtual bool acceptsFirstResponder() const { return false; }
  [[nodiscard]] bool acceptsTouchEvents() const { return acceptsTouchEvents_; }
  void setAcceptsTouchEvents(bool accepts) { acceptsTouchEvents_ = accepts; }

  // --- What assistive technology is told ---
  [[nodiscard]] virtual NSAccessibilityRole accessibilityRole() const {
    return NSAccessibilityRole::Unknown;
  }
  [[nodiscard]] const std::string& accessibilityLabel() const { return accessibilityLabel_; }
  void setAccessibilityLabel(std::string label);
  [[nodiscard]] const std::string& accessibilityHelp() const { return accessibilityHelp_; }
  void setAccessibilityHelp(std::string help);
  /// On or off for controls that have a state.
  [[nodiscard]] virtual std::optional<bool> accessibilityValue() const { return std::nullopt; }

 protected:
  void didChange(ViewChange change);

 private:
  NSLayoutAnchor anchor(NSLayoutAttribute attribute);

  Animatable<NSRect> frame_;
  std::vector<std::shared_ptr<NSView>> subviews_;
  NSView* superview_ = nullptr;
  NSWindow* window_ = nullptr;
  std::vector<std::shared_ptr<NSLayoutConstraint>> constraints_;
  std::unique_ptr<CALayer> layer_;
  std::optional<NSShadow> shadow_;
  std::string accessibilityLabel_;
  std::string accessibilityHelp_;
  double contentScale_ = 1;
  bool translates_ = true;
  bool needsLayout_ = true;
  bool hidden_ = false;
  bool acceptsTouchEvents_ = false;
};

/// Views in a row or a column, placed by the desktop with its own fonts and by these numbers.
/// In a row the views are centred vertically; in a column they take the column's width.
class NSStackView final : public NSView {
 public:
  enum class Orientation { Horizontal, Vertical };
  /// Room inside the edges, in points.
  struct Insets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;
  };

  [[nodiscard]] bool initWithCoder(const NSCoder& coder) override;
  [[nodiscard]] NSViewKind kind() const override { return NSViewKind::Stack; }
  [[nodiscard]] Orientation orientation() const { return orientation_; }
  /// Points between two views.
  [[nodiscard]] double spacing() const { return spacing_; }
  [[nodiscard]] const Insets& edgeInsets() const { return insets_; }
  /// Whether the stack takes what room is left over in the stack that it is in.
  [[nodiscard]] bool fills() const { return fills_; }
  [[nodiscard]] NSAccessibilityRole accessibilityRole() const override {
    return NSAccessibilityRole::Group;
  }

 private:
  Orientation orientation_ = Orientation::Vertical;
  double spacing_ = 0;
  Insets insets_;
  bool fills_ = false;
};

/// A thin line between the parts of a stack, in the theme's own way.
class NSSeparator final : public NSView {
 public:
  [[nodiscard]] NSViewKind kind() const override { return NSViewKind::Separator; }
};

}  // namespace platform
