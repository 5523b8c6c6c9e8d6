#pragma once

#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSView.h"

namespace platform {

/// A picture, scaled to fit its size. A view with a tint draws the picture's shape in that colour.
class NSImageView final : public NSView {
 public:
  [[nodiscard]] bool initWithCoder(const NSCoder& coder) override;
  [[nodiscard]] static std::shared_ptr<NSImageView> initWithFrame(NSRect frame);

  [[nodiscard]] NSViewKind kind() const override { return NSViewKind::Image; }
  [[nodiscard]] const std::shared_ptr<NSImage>& image() const { return image_; }
  void setImage(std::shared_ptr<NSImage> image);
  /// Width and height in points.
  [[nodiscard]] NSSize size() const { return size_; }
  [[nodiscard]] const std::optional<NSColor>& contentTintColor() const { return tint_; }
  [[nodiscard]] NSAccessibilityRole accessibilityRole() const override {
    return NSAccessibilityRole::Image;
  }

 private:
  std::shared_ptr<NSImage> image_;
  NSSize size_{16, 16};
  std::optional<NSColor> tint_;
};

}  // namespace platform
