#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/applescript/RunScript.h"

namespace platform::applescript {

enum class TokenKind { Word, Number, Text, Symbol, EndOfLine, EndOfScript, Bad };

struct Token {
  TokenKind kind = TokenKind::EndOfScript;
  SourceRange range;
  /// Word, Symbol: itself. Text: its content. Bad: the whole error message, or empty for something
  /// that the language does not know.
  std::string text;
  std::int64_t number = 0;
};

/// The tokens of `source`, any bytes whatever. The last one is EndOfScript; nothing but it follows
/// a Bad one. Blanks leave no token.
[[nodiscard]] std::vector<Token> tokens(std::string_view source);

/// Whether the language keeps `word` for itself, so that it names nothing.
[[nodiscard]] bool isReserved(std::string_view word);

/// How messages call `token`.
[[nodiscard]] std::string described(const Token& token);

}  // namespace platform::applescript
