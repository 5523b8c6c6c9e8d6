#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/applescript/Ast.h"
#include "platform/applescript/TokenStream.h"

namespace platform::applescript {

/// How deep statements may be nested, and how deep the expressions in one.
inline constexpr int kMaxDepth = 100;

/// Counts one level of nesting while it lives.
class Nesting {
 public:
  explicit Nesting(int& depth) : depth_(depth) { ++depth_; }
  ~Nesting() { --depth_; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;

  [[nodiscard]] bool tooDeep() const { return depth_ > kMaxDepth; }

 private:
  int& depth_;
};

/// Reads expressions. Each function returns null after an error, which the stream then holds.
/// `tells` is how many `tell` blocks are open: names of classes make sense only inside one.
class ExpressionParser {
 public:
  ExpressionParser(TokenStream& stream, const int& tells) : stream_(stream), tells_(tells) {}

  ExpressionPtr expression();
  /// An operand with its `of` chain, without operators.
  ExpressionPtr reference();

 private:
  ExpressionPtr coercion();
  ExpressionPtr operand();
  ExpressionPtr wordOperand(std::size_t begin);
  ExpressionPtr name(std::size_t begin, bool its);
  ExpressionPtr specifier();
  ExpressionPtr applicationOfVariable(std::size_t begin, const Token& variable);
  ExpressionPtr literal();
  ExpressionPtr negativeNumber(std::size_t begin);
  ExpressionPtr parenthesized();
  ExpressionPtr got(std::size_t begin);
  std::optional<bool> takeComparison();
  std::optional<CoercedType> takeType();
  [[nodiscard]] bool atSpecifier() const;
  template <typename Node>
  ExpressionPtr make(std::size_t begin, Node node);

  TokenStream& stream_;
  const int& tells_;
  int depth_ = 0;
};

}  // namespace platform::applescript
