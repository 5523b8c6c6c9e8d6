#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/foundation/NSObject.h"

namespace platform {

/// A named picture of the application's resources, kept as the bytes of its file (SVG). Immutable;
/// the desktop renders it at the sizes that it needs.
class NSImage final : public NSObject {
 public:
  NSImage(std::string name, std::string_view bytes);

  /// The image resource of that name, the same object each time; null when there is none.
  [[nodiscard]] static std::shared_ptr<NSImage> imageNamed(std::string_view name);

  [[nodiscard]] const std::string& name() const { return name_; }
  /// The SVG text. Lives as long as the process.
  [[nodiscard]] std::string_view bytes() const { return bytes_; }

 private:
  std::string name_;
  std::string_view bytes_;
};

}  // namespace platform
