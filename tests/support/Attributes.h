#pragma once

#include <map>
#include <string>

#include "platform/foundation/NSCoder.h"

namespace tests {

/// An interface description of one object, as a map.
class Attributes final : public platform::NSCoder {
 public:
  using Map = std::map<std::string, std::string, std::less<>>;

  Attributes(std::initializer_list<Map::value_type> values = {}) : values_(values) {}

  [[nodiscard]] std::optional<std::string_view> attribute(std::string_view name) const override {
    const auto found = values_.find(name);
    if (found == values_.end()) return std::nullopt;
    return found->second;
  }

 private:
  Map values_;
};

}  // namespace tests
