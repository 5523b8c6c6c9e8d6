#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace platform {

/// A run of characters: `location` is the first one, `length` how many.
struct NSRange {
  std::size_t location = 0;
  std::size_t length = 0;

  bool operator==(const NSRange&) const = default;
};

class Value;
using Array = std::vector<Value>;
using Dictionary = std::map<std::string, Value, std::less<>>;

/// A typed value of a settings entry, a user info or an error information. Each alternative is a
/// type of its own: true is not 1, 1 is not 1.0.
class Value {
 public:
  using Storage = std::variant<bool, std::int64_t, double, std::string, NSRange, Array, Dictionary>;

  Value(bool value) : storage_(value) {}
  Value(int value) : storage_(std::int64_t{value}) {}
  Value(std::int64_t value) : storage_(value) {}
  Value(double value) : storage_(value) {}
  Value(const char* value) : storage_(std::string(value)) {}
  Value(std::string value) : storage_(std::move(value)) {}
  Value(NSRange value) : storage_(value) {}
  Value(Array value) : storage_(std::move(value)) {}
  Value(Dictionary value) : storage_(std::move(value)) {}

  /// The value if it is exactly of type T.
  template <typename T>
  [[nodiscard]] std::optional<T> as() const {
    if (const T* value = std::get_if<T>(&storage_)) return *value;
    return std::nullopt;
  }

  [[nodiscard]] const Storage& storage() const { return storage_; }

  bool operator==(const Value&) const = default;

 private:
  Storage storage_;
};

/// The value under `key` if it is there and exactly of type T.
template <typename T>
[[nodiscard]] std::optional<T> valueOf(const Dictionary& dictionary, std::string_view key) {
  const auto found = dictionary.find(key);
  return found == dictionary.end() ? std::nullopt : found->second.as<T>();
}

/// The platform's description of a dictionary: braces, one `key = value;` line an entry, sorted by
/// key, indented by four blanks, with quotes around what is not a plain word.
[[nodiscard]] std::string description(const Dictionary& dictionary);
/// The same of one that may be absent: "nil", or the description in "Optional(…)".
[[nodiscard]] std::string description(const std::optional<Dictionary>& dictionary);

}  // namespace platform
