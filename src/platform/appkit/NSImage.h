#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/appkit/NSView.h"
#include "platform/coregraphics/CGWindow.h"
#include "platform/foundation/NSObject.h"

namespace platform {

/// A picture: a named one of the application's resources, kept as the bytes of its file (SVG),
/// which the desktop renders at the sizes that it needs; or a capture. Immutable.
class NSImage final : public NSObject {
 public:
  NSImage(std::string name, std::string_view bytes);
  /// `size` in points; (0, 0) takes the capture's size in pixels.
  [[nodiscard]] static std::shared_ptr<NSImage> initWithCGImage(CGImage capture, NSSize size);

  /// The image resource of that name, the same object each time; null when there is none.
  [[nodiscard]] static std::shared_ptr<NSImage> imageNamed(std::string_view name);

  [[nodiscard]] const std::string& name() const { return name_; }
  /// In points; (0, 0) for a resource, which has no size of its own.
  [[nodiscard]] NSSize size() const { return size_; }
  /// Null for a resource.
  [[nodiscard]] const CGImage& capture() const { return capture_; }
  /// The SVG text; empty for a capture. Lives as long as the process.
  [[nodiscard]] std::string_view bytes() const { return bytes_; }

 private:
  std::string name_;
  std::string_view bytes_;
  CGImage capture_;
  NSSize size_;
};

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
