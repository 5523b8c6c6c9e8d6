#pragma once

#include <cstddef>

namespace platform::applescript {

/// A run of bytes of the source, from `begin` up to but without `end`.
struct SourceRange {
  std::size_t begin = 0;
  std::size_t end = 0;

  bool operator==(const SourceRange&) const = default;
};

}  // namespace platform::applescript
