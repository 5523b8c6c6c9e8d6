#include "platform/foundation/Value.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/foundation/Utf8.h"

namespace platform {
namespace {

constexpr std::size_t kIndent = 4;

bool isPlain(char16_t unit) {
  return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') ||
         (unit >= u'a' && unit <= u'z');
}

std::string digits(char16_t unit, unsigned base, std::size_t width) {
  std::string text(width, '0');
  for (std::size_t place = width; place > 0; --place) {
    text[place - 1] = "0123456789abcdef"[unit % base];
    unit = static_cast<char16_t>(unit / base);
  }
  return text;
}

std::string escaped(char16_t unit) {
  switch (unit) {
    case u'"':
      return "\\\"";
    case u'\\':
      return "\\\\";
    case u'\n':
      return "\\n";
    case u'\r':
      return "\\r";
    case u'\t':
      return "\\t";
    default:
      break;
  }
  if (unit > 0x7E) return "\\U" + digits(unit, 16, 4);
  if (unit < 0x20) return "\\" + digits(unit, 8, 3);
  return {static_cast<char>(unit)};
}

std::string word(std::string_view text) {
  const std::u16string units = utf16FromUtf8(text);
  if (!units.empty() && std::all_of(units.begin(), units.end(), isPlain)) return std::string(text);
  std::string quoted = "\"";
  for (const char16_t unit : units) quoted += escaped(unit);
  return quoted + '"';
}

std::string text(double number) {
  std::array<char, 32> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  return {buffer.data(), end};
}

class Describer {
 public:
  void operator()(bool value) { text_ += value ? "1" : "0"; }
  void operator()(std::int64_t value) { text_ += word(std::to_string(value)); }
  void operator()(double value) { text_ += word(text(value)); }
  void operator()(const std::string& value) { text_ += word(value); }
  void operator()(const NSRange& value) {
    text_ += word("NSRange: {" + std::to_string(value.location) + ", " +
                  std::to_string(value.length) + "}");
  }

  void operator()(const Array& array) {
    text_ += "(\n";
    ++level_;
    std::string_view separator;
    for (const Value& value : array) {
      text_ += separator;
      indent();
      nested(value);
      separator = ",\n";
    }
    if (!array.empty()) text_ += '\n';
    close(')');
  }

  void operator()(const Dictionary& dictionary) {
    text_ += "{\n";
    ++level_;
    for (const auto& [key, value] : dictionary) {
      indent();
      text_ += word(key) + " = ";
      if (isContainer(value)) indent();
      nested(value);
      text_ += ";\n";
    }
    close('}');
  }

  [[nodiscard]] std::string take() { return std::move(text_); }

 private:
  static bool isContainer(const Value& value) {
    return std::holds_alternative<Array>(value.storage()) ||
           std::holds_alternative<Dictionary>(value.storage());
  }

  void nested(const Value& value) { std::visit(*this, value.storage()); }
  void indent() { text_.append(level_ * kIndent, ' '); }

  void close(char bracket) {
    --level_;
    indent();
    text_ += bracket;
  }

  std::string text_;
  std::size_t level_ = 0;
};

}  // namespace

std::string description(const Dictionary& dictionary) {
  Describer describer;
  describer(dictionary);
  return describer.take();
}

std::string description(const std::optional<Dictionary>& dictionary) {
  return dictionary ? "Optional(" + description(*dictionary) + ")" : "nil";
}

}  // namespace platform
