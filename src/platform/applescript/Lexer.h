#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/applescript/SourceRange.h"
#include "platform/foundation/Value.h"

namespace platform::applescript {

enum class TokenKind { Word, Number, Text, Symbol, EndOfLine, EndOfScript, Bad };

struct Token {
  TokenKind kind = TokenKind::EndOfScript;
  SourceRange range;
  /// Word: in lower case. Text: its content. Symbol: itself. Bad: the whole error message, or
  /// empty for a character that the language does not know.
  std::string text;
  /// Number: an integer, or a real where the source has a point, an exponent or too many digits.
  Value number = 0;
};

/// The tokens of `source`, any bytes whatever. The last one is EndOfScript; nothing but it follows
/// a Bad one. Comments, blanks and continued line ends leave no token.
[[nodiscard]] std::vector<Token> tokens(std::string_view source);

/// Whether the language keeps `word` (in lower case) for itself, so that it names nothing.
[[nodiscard]] bool isReserved(std::string_view word);

}  // namespace platform::applescript
