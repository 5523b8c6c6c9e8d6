#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "desktop/harness/XConnection.h"

namespace harness {

/// Pixels as 0xRRGGBB, row by row.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  [[nodiscard]] std::uint32_t at(int x, int y) const;
  [[nodiscard]] Image part(const Rect& area) const;
  bool operator==(const Image&) const = default;
};

/// The smallest rectangle that holds every pixel in which two images of one size differ; absent
/// when they are equal.
[[nodiscard]] std::optional<Rect> changedArea(const Image& before, const Image& after);

/// Throws std::runtime_error when the file cannot be written.
void writePng(const Image& image, const std::filesystem::path& path);

/// What a person in front of the screen sees, compositing included.
class Screen {
 public:
  /// `programsRest` tells whether none of those that draw has anything to do at the moment.
  Screen(const XConnection& x, std::function<bool()> programsRest)
      : x_(x), programsRest_(std::move(programsRest)) {}

  [[nodiscard]] Image whole() const { return area(x_.screenArea()); }
  /// Cut to the X screen.
  [[nodiscard]] Image area(const Rect& wanted) const;
  [[nodiscard]] std::uint32_t pixel(int x, int y) const { return area({x, y, 1, 1}).at(0, 0); }

  /// The image of `wanted` once it has stayed the same for `calm` and no program has anything left
  /// to do; the last one seen when it never came to rest within `patience`. For programs that paint
  /// in several steps and tell nobody when they are done. `calm` covers the steps that a timer
  /// begins; how long a busy machine keeps a program from painting does not count.
  [[nodiscard]] Image settled(const Rect& wanted, std::chrono::milliseconds calm,
                              std::chrono::milliseconds patience) const;

  /// As XConnection::waitUntil().
  bool waitUntil(const std::function<bool()>& fact, std::chrono::milliseconds patience) const {
    return x_.waitUntil(fact, patience);
  }

 private:
  const XConnection& x_;
  std::function<bool()> programsRest_;
};

}  // namespace harness
