#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

class NSObject;

/// One object of an interface description, as its class's `initWithCoder` reads it.
class NSCoder {
 public:
  virtual ~NSCoder() = default;
  /// The attribute's text, or none when the description does not say. Valid during the call that
  /// the coder was passed to.
  [[nodiscard]] virtual std::optional<std::string_view> attribute(std::string_view name) const = 0;
};

/// The value of type T that an attribute of an interface description spells, if it does:
/// "true"/"false", finite decimal numbers, texts as they are. Other types specialise it beside
/// themselves.
template <typename T>
[[nodiscard]] std::optional<T> attributeFromText(std::string_view text);

template <>
std::optional<bool> attributeFromText<bool>(std::string_view text);
template <>
std::optional<double> attributeFromText<double>(std::string_view text);
template <>
std::optional<std::int64_t> attributeFromText<std::int64_t>(std::string_view text);
template <>
std::optional<std::string> attributeFromText<std::string>(std::string_view text);

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
