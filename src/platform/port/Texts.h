#pragma once

#include <string>
#include <string_view>

namespace platform::port {

/// What the program says, in the user's language. Absent: all of it stays as it is written.
class Texts {
 public:
  virtual ~Texts() = default;
  /// `text` itself where it is known in no other language that the user reads.
  [[nodiscard]] virtual std::string localized(std::string_view text) const = 0;
};

}  // namespace platform::port
