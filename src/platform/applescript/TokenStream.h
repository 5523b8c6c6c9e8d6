#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/applescript/Lexer.h"
#include "platform/applescript/ScriptFailure.h"

namespace platform::applescript {

/// The tokens of a script as the parsers read them, and the first error that they met. After an
/// error the parsers give up; what they report later is ignored.
class TokenStream {
 public:
  explicit TokenStream(std::string_view source) : tokens_(tokens(source)) {}

  /// The token that comes next, or `ahead` after it; the last one for ever at the end.
  [[nodiscard]] const Token& peek(std::size_t ahead = 0) const;
  [[nodiscard]] bool atWord(std::string_view word, std::size_t ahead = 0) const;
  [[nodiscard]] bool atWords(std::initializer_list<std::string_view> words) const;
  [[nodiscard]] bool atSymbol(std::string_view symbol) const;
  /// At the end of a line or of the script.
  [[nodiscard]] bool atLineEnd() const;
  /// At a word that the language does not keep for itself.
  [[nodiscard]] bool atName() const;

  const Token& take();
  /// These take what they name and nothing else.
  bool takeWord(std::string_view word);
  bool takeWords(std::initializer_list<std::string_view> words);
  bool takeSymbol(std::string_view symbol);

  /// From byte `begin` to the end of the last token taken.
  [[nodiscard]] SourceRange rangeFrom(std::size_t begin) const;

  /// "Expected `what` but found …" at the next token.
  void expect(std::string_view what);
  /// "A … can’t go after this …" at `token`.
  void misplace(const Token& token, std::string_view after);
  /// For a line that should have ended.
  void expectLineEnd();
  void fail(int number, std::string message);
  [[nodiscard]] const std::optional<ScriptFailure>& failure() const { return failure_; }

 private:
  void failAt(const Token& token, int number, std::string message);

  std::vector<Token> tokens_;
  std::size_t next_ = 0;
  std::optional<ScriptFailure> failure_;
};

/// How messages call `token`.
[[nodiscard]] std::string described(const Token& token);

}  // namespace platform::applescript
