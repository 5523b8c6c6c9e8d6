#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/foundation/NSCoder.h"
#include "platform/foundation/NSObject.h"

namespace platform {

/// The classes that an interface description can name.
class ClassRegistry final {
 public:
  /// Makes an object from its description; null when the description cannot be read.
  using Maker = std::shared_ptr<NSObject> (*)(const NSCoder& coder);

  [[nodiscard]] static ClassRegistry& shared();

  /// Registers T, which offers `static std::shared_ptr<T> initWithCoder(const NSCoder&)`.
  template <typename T>
  void add(std::string className) {
    makers_.insert_or_assign(
        std::move(className),
        [](const NSCoder& coder) -> std::shared_ptr<NSObject> { return T::initWithCoder(coder); });
  }

  /// Null when no such class is registered.
  [[nodiscard]] Maker maker(std::string_view className) const;

 private:
  std::map<std::string, Maker, std::less<>> makers_;
};

}  // namespace platform
