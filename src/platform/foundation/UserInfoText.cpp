#include "platform/foundation/UserInfoText.h"

#include <array>
#include <charconv>
#include <string_view>

namespace platform {
namespace {

std::string inQuotes(std::string_view text) {
  std::string result = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') result += '\\';
    if (character == '\n') {
      result += "\\n";
    } else {
      result += character;
    }
  }
  return result + '"';
}

std::string text(const Value& value);

struct Describer {
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(std::int64_t value) const { return std::to_string(value); }
  std::string operator()(double value) const {
    std::array<char, 32> buffer{};
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    const std::string digits(buffer.data(), end);
    return digits.find_first_not_of("-0123456789") == std::string::npos ? digits + ".0" : digits;
  }
  std::string operator()(const std::string& value) const { return inQuotes(value); }
  std::string operator()(const NSRange& value) const {
    return "{" + std::to_string(value.location) + ", " + std::to_string(value.length) + "}";
  }
  std::string operator()(const Array& array) const {
    std::string result = "[";
    for (const Value& value : array) result += (result.size() == 1 ? "" : ", ") + text(value);
    return result + "]";
  }
  std::string operator()(const Dictionary& dictionary) const { return entries(dictionary, "", ""); }

  static std::string entries(const Dictionary& dictionary, std::string_view before,
                             std::string_view after) {
    if (dictionary.empty()) return "[:]";
    std::string result = "[";
    for (const auto& [key, value] : dictionary) {
      if (result.size() > 1) result += ", ";
      result.append(before).append(inQuotes(key)).append(after).append(": ").append(text(value));
    }
    return result + "]";
  }
};

std::string text(const Value& value) {
  return std::visit(Describer{}, value.storage());
}

}  // namespace

std::string userInfoText(const std::optional<Dictionary>& userInfo) {
  if (!userInfo) return "nil";
  return "Optional(" + Describer::entries(*userInfo, "AnyHashable(", ")") + ")";
}

}  // namespace platform
