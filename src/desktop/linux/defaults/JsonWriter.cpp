#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "desktop/linux/defaults/JsonMembers.h"

namespace linux_desktop {

namespace {

using platform::Array;
using platform::Value;

constexpr std::string_view kHexDigits = "0123456789abcdef";

unsigned char byteAt(std::string_view text, std::size_t index) {
  return index < text.size() ? static_cast<unsigned char>(text[index]) : '\0';
}

// Table 3-7 of the Unicode standard: which second bytes a first byte allows, and how many there are
// in all. Second bytes are restricted where an overlong form, a surrogate or a number beyond
// U+10FFFF would begin.
struct Utf8Row {
  unsigned char firstFrom, firstTo, secondFrom, secondTo;
  std::size_t length;
};
constexpr Utf8Row kUtf8Rows[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

// How many bytes the well-formed multi-byte sequence at the front of `text` has; 0: there is none.
std::size_t sequenceLength(std::string_view text) {
  const unsigned char first = byteAt(text, 0);
  const unsigned char second = byteAt(text, 1);
  for (const Utf8Row& row : kUtf8Rows) {
    if (first < row.firstFrom || first > row.firstTo) continue;
    if (second < row.secondFrom || second > row.secondTo) return 0;
    for (std::size_t index = 2; index < row.length; ++index) {
      if ((byteAt(text, index) & 0xC0U) != 0x80U) return 0;
    }
    return row.length;
  }
  return 0;
}

void appendEscape(std::string& out, std::string_view prefix, unsigned char byte) {
  out += prefix;
  out += kHexDigits[byte >> 4U];
  out += kHexDigits[byte & 0xFU];
}

void appendString(std::string& out, std::string_view string) {
  out += '"';
  while (!string.empty()) {
    const unsigned char byte = byteAt(string, 0);
    const std::size_t length = byte < 0x80 ? 1 : sequenceLength(string);
    if (length == 0) {
      appendEscape(out, "\\udc", byte);
    } else if (byte < 0x20) {
      appendEscape(out, "\\u00", byte);
    } else {
      if (byte == '"' || byte == '\\') out += '\\';
      out += string.substr(0, length);
    }
    string.remove_prefix(length == 0 ? 1 : length);
  }
  out += '"';
}

// The shortest digits that give the same number back, always with a sign of being a double.
bool appendDouble(std::string& out, double number) {
  if (!std::isfinite(number)) return false;
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  const std::string_view digits(buffer.data(),
                                static_cast<std::size_t>(result.ptr - buffer.data()));
  out += digits;
  if (digits.find_first_of(".e") == std::string_view::npos) out += ".0";
  return true;
}

bool appendValue(std::string& out, const Value& value, std::size_t depth);

bool appendArray(std::string& out, const Array& array, std::size_t depth) {
  if (depth > kMaximumJsonDepth) return false;
  out += '[';
  for (std::size_t index = 0; index < array.size(); ++index) {
    if (index > 0) out += ", ";
    if (!appendValue(out, array[index], depth)) return false;
  }
  out += ']';
  return true;
}

struct ValueWriter {
  std::string& out;
  std::size_t depth;  // of what stands around the value

  bool operator()(bool value) const {
    out += value ? "true" : "false";
    return true;
  }
  bool operator()(std::int64_t value) const {
    out += std::to_string(value);
    return true;
  }
  bool operator()(double value) const { return appendDouble(out, value); }
  bool operator()(const std::string& value) const {
    appendString(out, value);
    return true;
  }
  bool operator()(const Array& value) const { return appendArray(out, value, depth + 1); }
  bool operator()(const platform::NSRange& /*value*/) const { return false; }
  bool operator()(const platform::Dictionary& /*value*/) const { return false; }
};

bool appendValue(std::string& out, const Value& value, std::size_t depth) {
  return std::visit(ValueWriter{out, depth}, value.storage());
}

}  // namespace

std::optional<std::string> jsonText(const Value& value) {
  std::string out;
  if (!appendValue(out, value, 1)) return std::nullopt;
  return out;
}

std::string writeJson(const JsonMembers& members) {
  std::string out = "{";
  std::string_view separator = "\n  ";
  for (const auto& [name, member] : members) {
    out += separator;
    appendString(out, name);
    out += ": ";
    out += member.text;
    separator = ",\n  ";
  }
  out += members.empty() ? "}\n" : "\n}\n";
  return out;
}

}  // namespace linux_desktop
