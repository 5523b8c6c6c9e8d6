#pragma once

#include <optional>
#include <string>

#include "platform/foundation/NSObject.h"
#include "platform/port/RunningApplications.h"

namespace platform {

/// An application that runs, or ran when it was listed.
class NSRunningApplication final : public NSObject {
 public:
  explicit NSRunningApplication(port::ApplicationInfo info) : info_(std::move(info)) {}

  [[nodiscard]] const std::optional<std::string>& localizedName() const {
    return info_.localizedName;
  }
  [[nodiscard]] NSApplicationActivationPolicy activationPolicy() const {
    return info_.activationPolicy;
  }
  /// Now, not when it was listed.
  [[nodiscard]] bool isHidden() const;
  /// Whether the request could be delivered.
  bool hide() const;
  bool unhide() const;

 private:
  port::ApplicationInfo info_;
};

}  // namespace platform
