#pragma once

#include "platform/appkit/NSView.h"

namespace platform {

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
