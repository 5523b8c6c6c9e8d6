#include "platform/applescript/TokenStream.h"

#include <algorithm>

namespace platform::applescript {
namespace {

std::string inQuotes(std::string_view text) {
  return "“" + std::string(text) + "”";
}

bool beginsOperand(const Token& token) {
  return token.kind == TokenKind::Number || token.kind == TokenKind::Text ||
         (token.kind == TokenKind::Word && !isReserved(token.text));
}

}  // namespace

const Token& TokenStream::peek(std::size_t ahead) const {
  return tokens_[std::min(next_ + ahead, tokens_.size() - 1)];
}

bool TokenStream::atWord(std::string_view word, std::size_t ahead) const {
  return peek(ahead).kind == TokenKind::Word && peek(ahead).text == word;
}

bool TokenStream::atWords(std::initializer_list<std::string_view> words) const {
  std::size_t ahead = 0;
  return std::all_of(words.begin(), words.end(),
                     [&](std::string_view word) { return atWord(word, ahead++); });
}

bool TokenStream::atSymbol(std::string_view symbol) const {
  return peek().kind == TokenKind::Symbol && peek().text == symbol;
}

bool TokenStream::atLineEnd() const {
  return peek().kind == TokenKind::EndOfLine || peek().kind == TokenKind::EndOfScript;
}

bool TokenStream::atName() const {
  return peek().kind == TokenKind::Word && !isReserved(peek().text);
}

const Token& TokenStream::take() {
  const Token& token = peek();
  if (next_ + 1 < tokens_.size()) ++next_;
  return token;
}

bool TokenStream::takeWord(std::string_view word) {
  return takeWords({word});
}

bool TokenStream::takeWords(std::initializer_list<std::string_view> words) {
  if (!atWords(words)) return false;
  next_ += words.size();
  return true;
}

bool TokenStream::takeSymbol(std::string_view symbol) {
  if (!atSymbol(symbol)) return false;
  take();
  return true;
}

SourceRange TokenStream::rangeFrom(std::size_t begin) const {
  return {begin, next_ == 0 ? begin : std::max(begin, tokens_[next_ - 1].range.end)};
}

void TokenStream::expect(std::string_view what) {
  failAt(peek(), kUnexpectedElement,
         "Expected " + std::string(what) + " but found " + described(peek()) + ".");
}

void TokenStream::misplace(const Token& token, std::string_view after) {
  failAt(token, kMisplacedElement,
         "A " + described(token) + " can’t go after this " + std::string(after) + ".");
}

void TokenStream::expectLineEnd() {
  if (next_ > 0 && beginsOperand(peek()) && beginsOperand(tokens_[next_ - 1])) {
    misplace(peek(), described(tokens_[next_ - 1]));
  } else {
    expect("end of line");
  }
}

void TokenStream::fail(int number, std::string message) {
  failAt(peek(), number, std::move(message));
}

void TokenStream::failAt(const Token& token, int number, std::string message) {
  if (failure_) return;
  if (token.kind == TokenKind::Bad && !token.text.empty()) {
    failure_ = ScriptFailure{kUnexpectedElement, token.text, token.range, {}};
  } else {
    failure_ = ScriptFailure{number, std::move(message), token.range, {}};
  }
}

std::string described(const Token& token) {
  switch (token.kind) {
    case TokenKind::Word:
      return isReserved(token.text) ? inQuotes(token.text) : "identifier";
    case TokenKind::Number:
      return "number";
    case TokenKind::Text:
      return inQuotes("\"");
    case TokenKind::Symbol:
      return inQuotes(token.text);
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
