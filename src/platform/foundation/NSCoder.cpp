#include "platform/foundation/NSCoder.h"

#include <charconv>
#include <cmath>

#include "platform/Runtime.h"

namespace platform {
namespace {

template <typename Number>
std::optional<Number> numberFromText(std::string_view text) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc{} || stopped != end) return std::nullopt;
  return number;
}

}  // namespace

template <>
std::optional<bool> attributeFromText<bool>(std::string_view text) {
  if (text == "true") return true;
  if (text == "false") return false;
  return std::nullopt;
}

template <>
std::optional<double> attributeFromText<double>(std::string_view text) {
  const std::optional<double> number = numberFromText<double>(text);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

template <>
std::optional<std::int64_t> attributeFromText<std::int64_t>(std::string_view text) {
  return numberFromText<std::int64_t>(text);
}

template <>
std::optional<std::string> attributeFromText<std::string>(std::string_view text) {
  return std::string(text);
}

ClassRegistry& ClassRegistry::shared() {
  return *Runtime::current().instance<ClassRegistry>();
}

ClassRegistry::Maker ClassRegistry::maker(std::string_view className) const {
  const auto found = makers_.find(className);
  return found == makers_.end() ? nullptr : found->second;
}

}  // namespace platform
