#include <algorithm>
#include <charconv>
#include <cstdint>

#include "desktop/linux/defaults/JsonMembers.h"

namespace linux_desktop {

namespace {

using platform::Array;
using platform::Value;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isDigit(char byte) {
  return byte >= '0' && byte <= '9';
}

bool isBlank(char byte) {
  return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
}

bool isHighSurrogate(std::uint32_t code) {
  return code >= 0xD800 && code < 0xDC00;
}

bool isLowSurrogate(std::uint32_t code) {
  return code >= 0xDC00 && code < 0xE000;
}

// A half surrogate becomes the three bytes that its number has in UTF-8's scheme, unless it stands
// for a single byte.
void appendCode(std::string& text, std::uint32_t code) {
  const auto push = [&text](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
  const auto tail = [&](unsigned shift) { push(0x80U | (code >> shift & 0x3FU)); };
  if (code < 0x80) {
    push(code);
  } else if (code >= 0xDC80 && code <= 0xDCFF) {
    push(code & 0xFFU);
  } else if (code < 0x800) {
    push(0xC0U | code >> 6U);
    tail(0);
  } else if (code < 0x10000) {
    push(0xE0U | code >> 12U);
    tail(6);
    tail(0);
  } else {
    push(0xF0U | code >> 18U);
    tail(12);
    tail(6);
    tail(0);
  }
}

// Recursive descent. Each reader returns false once the text is wrong; error_ then says why.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {
    if (text_.starts_with(kByteOrderMark)) position_ = kByteOrderMark.size();
  }

  std::variant<JsonMembers, JsonError> read() {
    JsonMembers members;
    skipBlanks();
    if (!readObject(&members) || !expectEnd()) return std::move(error_);
    return members;
  }

 private:
  [[nodiscard]] bool atEnd() const { return position_ == text_.size(); }
  [[nodiscard]] char peek() const { return atEnd() ? '\0' : text_[position_]; }

  bool take(char byte) {
    if (atEnd() || text_[position_] != byte) return false;
    ++position_;
    return true;
  }

  bool fail(std::string reason) {
    const std::string_view before = text_.substr(0, position_);
    const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is 0
    error_.line = static_cast<std::size_t>(std::ranges::count(before, '\n')) + 1;
    error_.column = position_ - lineStart + 1;
    error_.reason = std::move(reason);
    return false;
  }

  void skipBlanks() {
    while (isBlank(peek())) ++position_;
  }

  bool expect(char byte) {
    skipBlanks();
    return take(byte) || fail(std::string("'") + byte + "' expected");
  }

  bool expectEnd() {
    skipBlanks();
    return atEnd() || fail("end of the file expected");
  }

  bool enter() { return ++depth_ <= kMaximumJsonDepth || fail("nested too deeply"); }

  // `members` is null for an object inside a member, which is checked but not kept.
  bool readObject(JsonMembers* members) {
    if (!enter() || !expect('{')) return false;
    skipBlanks();
    if (!take('}')) {
      do {
        if (!readMember(members)) return false;
        skipBlanks();
      } while (take(','));
      if (!expect('}')) return false;
    }
    --depth_;
    return true;
  }

  bool readMember(JsonMembers* members) {
    std::string name;
    skipBlanks();
    if (!readString(name) || !expect(':')) return false;
    skipBlanks();
    const std::size_t start = position_;
    std::optional<Value> value;
    if (!readValue(value)) return false;
    if (members != nullptr) {
      members->insert_or_assign(
          std::move(name),
          JsonMember{std::string(text_.substr(start, position_ - start)), std::move(value)});
    }
    return true;
  }

  // `value` stays absent for what settings have no type for.
  bool readValue(std::optional<Value>& value) {
    switch (peek()) {
      case '{':
        return readObject(nullptr);
      case '[':
        return readArray(value);
      case '"': {
        std::string string;
        if (!readString(string)) return false;
        value.emplace(std::move(string));
        return true;
      }
      case 't':
        value.emplace(true);
        return readWord("true");
      case 'f':
        value.emplace(false);
        return readWord("false");
      case 'n':
        return readWord("null");
      default:
        return readNumber(value);
    }
  }

  bool readWord(std::string_view word) {
    if (!text_.substr(position_).starts_with(word)) return fail("a value expected");
    position_ += word.size();
    return true;
  }

  bool readArray(std::optional<Value>& value) {
    Array array;
    bool complete = true;
    if (!enter() || !expect('[')) return false;
    skipBlanks();
    if (!take(']')) {
      do {
        std::optional<Value> element;
        skipBlanks();
        if (!readValue(element)) return false;
        complete = complete && element.has_value();
        if (complete) array.push_back(std::move(*element));
        skipBlanks();
      } while (take(','));
      if (!expect(']')) return false;
    }
    --depth_;
    if (complete) value.emplace(std::move(array));
    return true;
  }

  bool skipDigits() {
    const std::size_t start = position_;
    while (isDigit(peek())) ++position_;
    return position_ > start || fail("a digit expected");
  }

  bool readNumber(std::optional<Value>& value) {
    const std::size_t start = position_;
    if (peek() != '-' && !isDigit(peek())) return fail("a value expected");
    take('-');
    if (!take('0') && !skipDigits()) return false;
    bool whole = true;
    if (take('.')) {
      whole = false;
      if (!skipDigits()) return false;
    }
    if (take('e') || take('E')) {
      whole = false;
      if (!take('+')) take('-');
      if (!skipDigits()) return false;
    }
    const std::string_view digits = text_.substr(start, position_ - start);
    value = whole ? numberOf<std::int64_t>(digits) : numberOf<double>(digits);
    return true;
  }

  // Absent when out of range.
  template <typename Number>
  static std::optional<Value> numberOf(std::string_view digits) {
    Number number{};
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec != std::errc{}) return std::nullopt;
    return Value(number);
  }

  bool readString(std::string& string) {
    if (!take('"')) return fail("a string expected");
    while (!take('"')) {
      if (atEnd()) return fail("the string does not end");
      if (static_cast<unsigned char>(peek()) < 0x20) return fail("a control character in a string");
      if (take('\\')) {
        if (!readEscape(string)) return false;
      } else {
        string.push_back(text_[position_++]);
      }
    }
    return true;
  }

  bool readEscape(std::string& string) {
    constexpr std::string_view kNames = "\"\\/bfnrt";
    constexpr std::string_view kBytes = "\"\\/\b\f\n\r\t";
    if (take('u')) return readCodes(string);
    const std::size_t index = atEnd() ? std::string_view::npos : kNames.find(peek());
    if (index == std::string_view::npos) return fail("an unknown escape");
    ++position_;
    string.push_back(kBytes[index]);
    return true;
  }

  bool readCodes(std::string& string) {
    std::uint32_t code = 0;
    if (!readHex(code)) return false;
    // A second escape that turns out not to complete the pair is read again by the caller.
    const std::size_t second = position_;
    if (isHighSurrogate(code) && take('\\') && take('u')) {
      std::uint32_t low = 0;
      if (!readHex(low)) return false;
      if (isLowSurrogate(low)) {
        appendCode(string, 0x10000 + ((code - 0xD800) << 10U) + (low - 0xDC00));
        return true;
      }
    }
    position_ = second;
    appendCode(string, code);
    return true;
  }

  bool readHex(std::uint32_t& code) {
    const std::string_view digits = text_.substr(position_, 4);
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
    if (digits.size() < 4 || result.ptr != digits.data() + digits.size() ||
        result.ec != std::errc{}) {
      return fail("four hexadecimal digits expected");
    }
    position_ += 4;
    return true;
  }

  std::string_view text_;
  std::size_t position_ = 0;
  std::size_t depth_ = 0;
  JsonError error_;
};

}  // namespace

std::variant<JsonMembers, JsonError> readJson(std::string_view text) {
  return Reader(text).read();
}

}  // namespace linux_desktop
