#include "platform/applescript/Script.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace platform::applescript {
namespace {

constexpr auto kReserved = std::to_array<std::string_view>(
    {"as", "end", "equal", "get", "if", "is", "its", "not", "of", "set", "tell", "then", "to"});
static_assert(std::is_sorted(kReserved.begin(), kReserved.end()));

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isWordStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool isWordPart(char c) {
  return isWordStart(c) || isDigit(c);
}
bool isUtf8Tail(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

class Lexer {
 public:
  explicit Lexer(std::string_view source) : source_(source) {}

  std::vector<Token> run() {
    while (skipWhile([](char c) { return c == ' ' || c == '\t'; }), !atEnd()) {
      begin_ = position_;
      if (takeToken().kind == TokenKind::Bad) break;
    }
    begin_ = position_ = source_.size();
    add(TokenKind::EndOfScript);
    return std::move(tokens_);
  }

 private:
  [[nodiscard]] bool atEnd() const { return position_ == source_.size(); }

  template <typename Predicate>
  void skipWhile(Predicate predicate) {
    while (!atEnd() && predicate(source_[position_])) ++position_;
  }

  Token& add(TokenKind kind) {
    return tokens_.emplace_back(Token{kind, {begin_, position_}, {}, 0});
  }
  Token& addWithSource(TokenKind kind) {
    Token& token = add(kind);
    token.text = source_.substr(begin_, position_ - begin_);
    return token;
  }

  Token& takeToken() {
    const char first = source_[position_++];
    if (first == '\n') return add(TokenKind::EndOfLine);
    if (first == '(' || first == ')') return addWithSource(TokenKind::Symbol);
    if (first == '"') return takeText();
    if (isDigit(first)) return takeNumber();
    skipWhile(isWordStart(first) ? isWordPart : isUtf8Tail);
    return isWordStart(first) ? addWithSource(TokenKind::Word) : add(TokenKind::Bad);
  }

  Token& takeText() {
    const std::size_t content = position_;
    skipWhile([](char c) { return c != '"'; });
    if (atEnd()) {
      position_ = content;
      Token& open = add(TokenKind::Bad);
      open.text = "Expected “\"” but found end of script.";
      return open;
    }
    ++position_;
    Token& token = add(TokenKind::Text);
    token.text = source_.substr(content, position_ - 1 - content);
    return token;
  }

  Token& takeNumber() {
    skipWhile(isDigit);
    std::int64_t number = 0;
    const auto [end, error] =
        std::from_chars(source_.data() + begin_, source_.data() + position_, number);
    Token& token = add(error == std::errc{} ? TokenKind::Number : TokenKind::Bad);
    token.number = number;
    return token;
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

std::string described(const Token& token) {
  switch (token.kind) {
    case TokenKind::Word:
      return isReserved(token.text) ? "“" + token.text + "”" : "identifier";
    case TokenKind::Number:
      return "number";
    case TokenKind::Text:
      return "“\"”";
    case TokenKind::Symbol:
      return "“" + token.text + "”";
    case TokenKind::EndOfLine:
      return "end of line";
    case TokenKind::EndOfScript:
      return "end of script";
    case TokenKind::Bad:
      break;
  }
  return "unknown token";
}

}  // namespace platform::applescript
