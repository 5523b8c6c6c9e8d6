#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <utility>

#include "platform/appkit/NSColor.h"
#include "platform/appkit/NSTextField.h"

namespace linux_desktop {

/// The contrast of two opaque colours as WCAG 2 defines it: from 1 (none) to 21.
[[nodiscard]] double contrast(const QColor& one, const QColor& other);

/// What text, and what shapes that mean something, must keep to what is behind them (WCAG 2, AA).
inline constexpr double kTextContrast = 4.5;
inline constexpr double kShapeContrast = 3.0;

/// The desktop's palette and font in the model's terms. A value: made anew for each painting, so
/// that it is never older than the theme.
class Theme {
 public:
  explicit Theme(QPalette palette) : palette_(std::move(palette)) {}

  [[nodiscard]] QColor color(const platform::NSColor& color) const;

  /// `color`, or the next shade of it that stands out from the window: for shapes that mean
  /// something.
  [[nodiscard]] QColor mark(const platform::NSColor& color) const;
  /// The rings around focused controls.
  [[nodiscard]] QColor focusRing() const;
  [[nodiscard]] QColor window() const { return palette_.color(QPalette::Active, QPalette::Window); }

 private:
  [[nodiscard]] QColor system(platform::NSSystemColor color) const;
  [[nodiscard]] QColor text() const;
  [[nodiscard]] QColor secondaryText() const;
  [[nodiscard]] QColor accent() const;
  [[nodiscard]] QColor standingOut(const QColor& color) const;

  QPalette palette_;
};

/// `base`, the desktop's own font, in the size and weight of `style`.
[[nodiscard]] QFont fontFor(platform::NSTextStyle style, QFont base);

/// How much larger than on most desktops the user wants text, and so whatever stands beside it: 1
/// for usual sizes and smaller ones.
[[nodiscard]] double textScale();

}  // namespace linux_desktop
