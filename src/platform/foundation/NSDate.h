#pragma once

#include <string>

#include "platform/port/Program.h"

namespace platform {

/// A moment of civil time. A value.
class NSDate {
 public:
  explicit NSDate(WallTime time) : time_(time) {}
  /// The current moment by the desktop's clock.
  [[nodiscard]] static NSDate date();

  /// The platform's default description, in UTC: "2026-11-16 19:43:02 +0000".
  [[nodiscard]] std::string description() const;

 private:
  WallTime time_;
};

}  // namespace platform
