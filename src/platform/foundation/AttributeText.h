#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

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

}  // namespace platform
