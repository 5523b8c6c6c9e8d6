#pragma once

#include <string>

namespace platform {

/// The location of a file. A value; equal when the paths are.
class NSURL {
 public:
  [[nodiscard]] static NSURL fileURLWithPath(std::string path) { return NSURL(std::move(path)); }
  [[nodiscard]] const std::string& path() const { return path_; }
  bool operator==(const NSURL&) const = default;

 private:
  explicit NSURL(std::string path) : path_(std::move(path)) {}
  std::string path_;
};

}  // namespace platform
