#include "platform/applescript/Lexer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace platform::applescript {
namespace {

// Also those that only the full language uses, so that its scripts fail where they leave ours.
constexpr auto kReserved = std::to_array<std::string_view>(
    {"and",     "as",       "considering", "contains", "div",  "does",  "else",  "end",
     "equal",   "equals",   "error",       "every",    "exit", "false", "get",   "global",
     "if",      "ignoring", "in",          "is",       "it",   "its",   "local", "me",
     "missing", "mod",      "my",          "not",      "of",   "on",    "or",    "repeat",
     "return",  "set",      "tell",        "the",      "then", "to",    "true",  "try",
     "using",   "whose",    "with",        "without"});
static_assert(std::is_sorted(kReserved.begin(), kReserved.end()));

// Longer ones first where one begins another.
constexpr auto kSymbols = std::to_array<std::string_view>(
    {"/=", "≠", "≤", "≥", "÷", "<=", ">=", "(", ")", "=", "-", "+", "*",
     "/",  "^", "&", "<", ">", "{",  "}",  "[", "]", ",", ":", "'"});

constexpr std::string_view kContinuation = "¬";

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isWordStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool isWordPart(char c) {
  return isWordStart(c) || isDigit(c);
}
bool isBlank(char c) {
  return c == ' ' || c == '\t';
}
bool isLineEnd(char c) {
  return c == '\n' || c == '\r';
}
char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

class Lexer {
 public:
  explicit Lexer(std::string_view source) : source_(source) {}

  std::vector<Token> run() {
    while (skipToToken() && position_ < source_.size()) {
      begin_ = position_;
      if (!takeToken()) break;
    }
    begin_ = position_ = source_.size();
    add(TokenKind::EndOfScript);
    return std::move(tokens_);
  }

 private:
  [[nodiscard]] std::string_view rest() const { return source_.substr(position_); }
  [[nodiscard]] bool at(std::string_view text) const { return rest().starts_with(text); }
  [[nodiscard]] bool atEnd() const { return position_ == source_.size(); }
  [[nodiscard]] char current() const { return atEnd() ? '\0' : source_[position_]; }

  template <typename Predicate>
  void skipWhile(Predicate predicate) {
    while (!atEnd() && predicate(source_[position_])) ++position_;
  }

  Token& add(TokenKind kind, std::string text = {}) {
    return tokens_.emplace_back(Token{kind, {begin_, position_}, std::move(text), 0});
  }

  bool bad(SourceRange range, std::string message = {}) {
    tokens_.push_back(Token{TokenKind::Bad, range, std::move(message), 0});
    return false;
  }

  // False after something that is neither a blank, a comment nor a token.
  bool skipToToken() {
    while (!atEnd()) {
      if (isBlank(current())) {
        ++position_;
      } else if (at("--") || at("#")) {
        skipWhile([](char c) { return !isLineEnd(c); });
      } else if (at("(*")) {
        if (!skipBlockComment()) return false;
      } else if (at(kContinuation)) {
        if (!skipContinuation()) return false;
      } else {
        break;
      }
    }
    return true;
  }

  bool skipBlockComment() {
    const SourceRange opening{position_, position_ + 2};
    std::size_t depth = 0;
    while (!atEnd()) {
      if (at("(*")) {
        ++depth;
        position_ += 2;
      } else if (at("*)")) {
        --depth;
        position_ += 2;
        if (depth == 0) return true;
      } else {
        ++position_;
      }
    }
    return bad(opening, "Expected “*)” but found end of script.");
  }

  bool skipContinuation() {
    const SourceRange mark{position_, position_ + kContinuation.size()};
    position_ = mark.end;
    skipWhile(isBlank);
    if (!skipLineEnd()) return bad(mark);
    return true;
  }

  bool skipLineEnd() {
    const std::size_t length = at("\r\n") ? 2 : 1;
    if (!isLineEnd(current())) return false;
    position_ += length;
    return true;
  }

  bool takeToken() {
    if (skipLineEnd()) {
      add(TokenKind::EndOfLine);
      return true;
    }
    if (isWordStart(current())) return takeWord();
    if (isDigit(current())) return takeNumber();
    if (current() == '"') return takeText();
    return takeSymbol();
  }

  bool takeWord() {
    skipWhile(isWordPart);
    std::string word(source_.substr(begin_, position_ - begin_));
    std::transform(word.begin(), word.end(), word.begin(), lowered);
    add(TokenKind::Word, std::move(word));
    return true;
  }

  // `3`, `3.5`, `3E+2`: what follows a number without fitting in stays for the next token.
  bool takeNumber() {
    skipWhile(isDigit);
    bool real = false;
    if (current() == '.' && position_ + 1 < source_.size() && isDigit(source_[position_ + 1])) {
      real = true;
      ++position_;
      skipWhile(isDigit);
    }
    if (const std::size_t length = exponentLength()) {
      real = true;
      position_ += length;
      skipWhile(isDigit);
    }
    const std::string_view text = source_.substr(begin_, position_ - begin_);
    const std::optional<Value> number = numberOf(text, real);
    if (!number) return bad({begin_, position_});
    add(TokenKind::Number).number = *number;
    return true;
  }

  // The length of an exponent's letter, sign and first digit; 0 where there is none.
  [[nodiscard]] std::size_t exponentLength() const {
    const std::string_view text = rest();
    if (text.empty() || lowered(text[0]) != 'e') return 0;
    const std::size_t sign = text.size() > 1 && (text[1] == '+' || text[1] == '-') ? 1 : 0;
    return text.size() > sign + 1 && isDigit(text[sign + 1]) ? sign + 2 : 0;
  }

  static std::optional<Value> numberOf(std::string_view text, bool real) {
    const char* end = text.data() + text.size();
    std::int64_t integer = 0;
    if (!real && std::from_chars(text.data(), end, integer).ec == std::errc{}) return integer;
    std::string plain(text);
    std::erase(plain, '+');
    double number = 0;
    const char* plainEnd = plain.data() + plain.size();
    if (std::from_chars(plain.data(), plainEnd, number).ec != std::errc{}) return std::nullopt;
    return number;
  }

  // A text may go over several lines.
  bool takeText() {
    const SourceRange opening{position_, position_ + 1};
    std::string content;
    for (++position_; !atEnd(); ++position_) {
      if (current() == '"') {
        ++position_;
        add(TokenKind::Text, std::move(content));
        return true;
      }
      if (current() != '\\') {
        content += current();
        continue;
      }
      const std::optional<char> escaped = escapedCharacter();
      if (!escaped) return badEscape();
      content += *escaped;
      ++position_;
    }
    return bad(opening, "Expected “\"” but found end of script.");
  }

  [[nodiscard]] std::optional<char> escapedCharacter() const {
    constexpr std::string_view kLetters = "\"\\nrt";
    constexpr std::string_view kMeanings = "\"\\\n\r\t";
    if (position_ + 1 == source_.size()) return std::nullopt;
    const std::size_t index = kLetters.find(source_[position_ + 1]);
    if (index == std::string_view::npos) return std::nullopt;
    return kMeanings[index];
  }

  bool badEscape() {
    return bad({position_, position_ + 1}, "Expected “\"” but found unknown token.");
  }

  bool takeSymbol() {
    for (const std::string_view symbol : kSymbols) {
      if (!at(symbol)) continue;
      position_ += symbol.size();
      add(TokenKind::Symbol, std::string(symbol));
      return true;
    }
    ++position_;
    skipWhile([](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; });
    return bad({begin_, position_});
  }

  std::string_view source_;
  std::size_t position_ = 0;
  std::size_t begin_ = 0;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> tokens(std::string_view source) {
  return Lexer(source).run();
}

bool isReserved(std::string_view word) {
  return std::binary_search(kReserved.begin(), kReserved.end(), word);
}

}  // namespace platform::applescript
