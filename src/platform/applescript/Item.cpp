#include "platform/applescript/Item.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace platform::applescript {
namespace {

constexpr std::size_t kLongestForm = 120;

template <typename... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

std::string textOfReal(double number) {
  std::array<char, 32> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  std::string text(buffer.data(), end);
  const bool whole = text.find_first_not_of("-0123456789") == std::string::npos;
  return whole ? text + ".0" : text;
}

std::optional<std::int64_t> integerOfReal(double number) {
  constexpr double kLimit = 9.0e18;
  if (!std::isfinite(number) || std::abs(number) > kLimit) return std::nullopt;
  return static_cast<std::int64_t>(std::nearbyint(number));
}

template <typename Number>
std::optional<Number> parsed(std::string_view text) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc{} || stopped != end) return std::nullopt;
  return number;
}

std::optional<std::int64_t> integerOfText(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  if (const auto integer = parsed<std::int64_t>(text)) return integer;
  if (const auto real = parsed<double>(text)) return integerOfReal(*real);
  return std::nullopt;
}

char folded(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalTexts(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char one, char other) { return folded(one) == folded(other); });
}

std::optional<double> amountOf(const Value& value) {
  if (const auto integer = value.as<std::int64_t>()) return static_cast<double>(*integer);
  return value.as<double>();
}

bool equalValues(const Value& left, const Value& right) {
  if (left.storage().index() == right.storage().index()) {
    const auto* one = std::get_if<std::string>(&left.storage());
    const auto* other = std::get_if<std::string>(&right.storage());
    return one && other ? equalTexts(*one, *other) : left == right;
  }
  const std::optional<double> amount = amountOf(left);
  return amount && amount == amountOf(right);
}

// Never in the middle of a character.
std::string cut(std::string text) {
  if (text.size() <= kLongestForm) return text;
  std::size_t length = kLongestForm;
  while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) --length;
  text.resize(length);
  return text + "…";
}

std::string inQuotes(std::string_view text) {
  std::string form = "\"";
  for (const char c : text.substr(0, kLongestForm + 4)) {
    if (c == '"' || c == '\\') form += '\\';
    form += c;
  }
  return form + '"';
}

std::string formOf(const Value& value);

std::string formOf(const Dictionary& record) {
  std::string form;
  for (const auto& [key, value] : record) {
    form += (form.empty() ? "{" : ", ") + key + ":" + formOf(value);
    if (form.size() > kLongestForm) break;
  }
  return form.empty() ? "{}" : form + "}";
}

std::string formOf(const Array& list) {
  std::string form;
  for (const Value& value : list) {
    form += (form.empty() ? "{" : ", ") + formOf(value);
    if (form.size() > kLongestForm) break;
  }
  return form.empty() ? "{}" : form + "}";
}

std::string formOf(const Value& value) {
  return std::visit(Overloaded{[](const std::string& text) { return inQuotes(text); },
                               [](const Array& list) { return formOf(list); },
                               [](const Dictionary& record) { return formOf(record); },
                               [&](const auto&) { return textOf(value).value_or("a value"); }},
                    value.storage());
}

}  // namespace

Item itemOf(Value value) {
  return std::make_shared<const Value>(std::move(value));
}

const Value* valueIn(const Item& item) {
  const auto* value = std::get_if<std::shared_ptr<const Value>>(&item);
  return value ? value->get() : nullptr;
}

std::optional<std::string> textOf(const Value& value) {
  using Text = std::optional<std::string>;
  return std::visit(Overloaded{[](bool truth) -> Text { return truth ? "true" : "false"; },
                               [](std::int64_t number) -> Text { return std::to_string(number); },
                               [](double number) -> Text { return textOfReal(number); },
                               [](const std::string& text) -> Text { return text; },
                               [](const auto&) -> Text { return std::nullopt; }},
                    value.storage());
}

std::optional<std::string> textOf(const Item& item) {
  if (std::holds_alternative<Missing>(item)) return "missing value";
  const Value* value = valueIn(item);
  return value ? textOf(*value) : std::nullopt;
}

std::optional<std::int64_t> integerOf(const Item& item) {
  using Integer = std::optional<std::int64_t>;
  const Value* value = valueIn(item);
  if (!value) return std::nullopt;
  return std::visit(
      Overloaded{[](bool truth) -> Integer { return truth ? 1 : 0; },
                 [](std::int64_t number) -> Integer { return number; },
                 [](double number) -> Integer { return integerOfReal(number); },
                 [](const std::string& text) -> Integer { return integerOfText(text); },
                 [](const auto&) -> Integer { return std::nullopt; }},
      value->storage());
}

std::optional<bool> booleanOf(const Item& item) {
  using Truth = std::optional<bool>;
  const Value* value = valueIn(item);
  if (!value) return std::nullopt;
  return std::visit(Overloaded{[](bool truth) -> Truth { return truth; },
                               [](std::int64_t number) -> Truth { return number != 0; },
                               [](const std::string& text) -> Truth {
                                 if (equalTexts(text, "true")) return true;
                                 if (equalTexts(text, "false")) return false;
                                 return std::nullopt;
                               },
                               [](const auto&) -> Truth { return std::nullopt; }},
                    value->storage());
}

bool areEqual(const Item& left, const Item& right) {
  if (left.index() != right.index()) return false;
  return std::visit(Overloaded{[](Missing) { return true; },
                               [&](const std::shared_ptr<const Value>& value) {
                                 return equalValues(*value, *valueIn(right));
                               },
                               [&](const Reference& reference) {
                                 return reference.object == std::get<Reference>(right).object;
                               }},
                    left);
}

std::string sourceForm(const Item& item) {
  if (std::holds_alternative<Missing>(item)) return "missing value";
  if (const auto* reference = std::get_if<Reference>(&item)) return reference->text;
  return cut(formOf(*valueIn(item)));
}

std::string sourceForm(const port::ElementSpecifier& which) {
  if (const auto* name = std::get_if<std::string>(&which)) return cut(inQuotes(*name));
  if (const auto* index = std::get_if<std::int64_t>(&which)) return std::to_string(*index);
  return {};
}

}  // namespace platform::applescript
