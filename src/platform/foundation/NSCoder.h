#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

class NSObject;

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

/// A word of interface descriptions, and what it stands for.
template <typename T>
struct NamedValue {
  std::string_view name;
  T value;
};
template <typename T, std::size_t Count>
[[nodiscard]] std::optional<T> valueNamed(std::string_view name,
                                          const NamedValue<T> (&table)[Count]) {
  const auto* row = std::ranges::find(table, name, &NamedValue<T>::name);
  return row == std::end(table) ? std::nullopt : std::optional(row->value);
}

/// One object of an interface description, as its class's `initWithCoder` reads it.
class NSCoder {
 public:
  virtual ~NSCoder() = default;
  /// The attribute's text, or none when the description does not say. Valid during the call that
  /// the coder was passed to.
  [[nodiscard]] virtual std::optional<std::string_view> attribute(std::string_view name) const = 0;

  /// Gives `value` what the attribute spells, or leaves it as it is where the description does not
  /// say. False when that is nothing of type T.
  template <typename T>
  [[nodiscard]] bool read(std::string_view name, T& value) const {
    const std::optional<std::string_view> text = attribute(name);
    if (!text) return true;
    const std::optional<T> spelt = attributeFromText<T>(*text);
    if (spelt) value = *spelt;
    return spelt.has_value();
  }
};

/// A new object of class T as the description has it; null when that cannot be read.
template <typename T>
[[nodiscard]] std::shared_ptr<T> objectFromCoder(const NSCoder& coder) {
  auto object = std::make_shared<T>();
  return object->initWithCoder(coder) ? object : nullptr;
}

/// The classes that an interface description can name.
class ClassRegistry final {
 public:
  /// Makes an object from its description; null when the description cannot be read.
  using Maker = std::shared_ptr<NSObject> (*)(const NSCoder& coder);

  [[nodiscard]] static ClassRegistry& shared();

  template <typename T>
  static std::shared_ptr<NSObject> make(const NSCoder& coder) {
    return objectFromCoder<T>(coder);
  }
  template <typename T>
  void add(std::string className) {
    makers_.insert_or_assign(std::move(className), &make<T>);
  }

  /// Null when no such class is registered.
  [[nodiscard]] Maker maker(std::string_view className) const;

 private:
  std::map<std::string, Maker, std::less<>> makers_;
};

}  // namespace platform
