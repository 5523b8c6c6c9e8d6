#include "platform/applescript/ExpressionParser.h"

#include <utility>

namespace platform::applescript {
namespace {

struct ComparisonSign {
  std::string_view sign;
  bool negated;
};

constexpr ComparisonSign kSigns[] = {{"=", false}, {"≠", true}, {"/=", true}};

struct TypeName {
  std::string_view name;
  CoercedType type;
};

constexpr TypeName kTypes[] = {
    {"text", CoercedType::Text},
    {"string", CoercedType::Text},
    {"integer", CoercedType::Integer},
    {"boolean", CoercedType::Boolean},
};

ExpressionPtr literalOf(SourceRange range, Value value) {
  Literal literal{std::make_shared<const Value>(std::move(value))};
  return std::make_unique<Expression>(Expression{range, std::move(literal)});
}

struct Negated {
  Value operator()(std::int64_t number) const { return -number; }
  Value operator()(double number) const { return -number; }
  template <typename Other>
  Value operator()(const Other& other) const {
    return other;
  }
};

}  // namespace

template <typename Node>
ExpressionPtr ExpressionParser::make(std::size_t begin, Node node) {
  return std::make_unique<Expression>(Expression{stream_.rangeFrom(begin), std::move(node)});
}

ExpressionPtr ExpressionParser::expression() {
  const std::size_t begin = stream_.peek().range.begin;
  ExpressionPtr left = coercion();
  if (!left) return nullptr;
  const std::optional<bool> negated = takeComparison();
  if (!negated) return left;
  ExpressionPtr right = coercion();
  if (!right) return nullptr;
  return make(begin, Comparison{std::move(left), std::move(right), *negated});
}

// `is [not] [equal [to]]`, `does not equal`, `equal to`, `equals` and the signs.
std::optional<bool> ExpressionParser::takeComparison() {
  for (const auto& [sign, negated] : kSigns) {
    if (stream_.takeSymbol(sign)) return negated;
  }
  if (stream_.takeWord("equals") || stream_.takeWords({"equal", "to"})) return false;
  if (stream_.takeWords({"does", "not", "equal"})) return true;
  if (!stream_.takeWord("is")) return std::nullopt;
  const bool negated = stream_.takeWord("not");
  if (stream_.takeWord("equal")) stream_.takeWord("to");
  return negated;
}

ExpressionPtr ExpressionParser::coercion() {
  const std::size_t begin = stream_.peek().range.begin;
  ExpressionPtr operand = reference();
  if (!operand || !stream_.takeWord("as")) return operand;
  const std::optional<CoercedType> type = takeType();
  if (!type) return nullptr;
  return make(begin, Coercion{std::move(operand), *type});
}

std::optional<CoercedType> ExpressionParser::takeType() {
  for (const TypeName& row : kTypes) {
    if (stream_.takeWord(row.name)) return row.type;
  }
  stream_.expect("class name");
  return std::nullopt;
}

ExpressionPtr ExpressionParser::reference() {
  const Nesting nesting(depth_);
  if (nesting.tooDeep()) {
    stream_.fail(kStackOverflow, "Stack overflow.");
    return nullptr;
  }
  return operand();
}

ExpressionPtr ExpressionParser::operand() {
  const Token& token = stream_.peek();
  const std::size_t begin = token.range.begin;
  switch (token.kind) {
    case TokenKind::Number:
    case TokenKind::Text:
      return literal();
    case TokenKind::Symbol:
      if (token.text == "(") return parenthesized();
      if (token.text == "-") return negativeNumber(begin);
      break;
    case TokenKind::Word:
      return wordOperand(begin);
    default:
      break;
  }
  stream_.expect("expression");
  return nullptr;
}

ExpressionPtr ExpressionParser::wordOperand(std::size_t begin) {
  if (stream_.takeWord("true")) return literalOf(stream_.rangeFrom(begin), true);
  if (stream_.takeWord("false")) return literalOf(stream_.rangeFrom(begin), false);
  if (stream_.takeWords({"missing", "value"})) return make(begin, MissingValue{});
  if (stream_.takeWord("it")) return make(begin, It{});
  if (stream_.takeWord("its")) return name(begin, true);
  if (stream_.takeWord("get")) return got(begin);
  if (stream_.atName()) return name(begin, false);
  stream_.expect("expression");
  return nullptr;
}

ExpressionPtr ExpressionParser::got(std::size_t begin) {
  if (stream_.atWords({"volume", "settings"}) && !stream_.atWord("of", 2)) {
    stream_.takeWords({"volume", "settings"});
    return make(begin, VolumeSettings{});
  }
  return reference();
}

ExpressionPtr ExpressionParser::literal() {
  const Token& token = stream_.take();
  return literalOf(token.range, token.kind == TokenKind::Text ? Value(token.text) : token.number);
}

ExpressionPtr ExpressionParser::negativeNumber(std::size_t begin) {
  stream_.takeSymbol("-");
  if (stream_.peek().kind != TokenKind::Number) {
    stream_.expect("number");
    return nullptr;
  }
  const Value number = std::visit(Negated{}, stream_.take().number.storage());
  return literalOf(stream_.rangeFrom(begin), number);
}

ExpressionPtr ExpressionParser::parenthesized() {
  stream_.takeSymbol("(");
  ExpressionPtr inner = expression();
  if (!inner) return nullptr;
  if (!stream_.takeSymbol(")")) {
    stream_.expect("“)”");
    return nullptr;
  }
  return inner;
}

// Without a dictionary, a run of words is one name, as long as it can be.
ExpressionPtr ExpressionParser::name(std::size_t begin, bool its) {
  std::vector<std::string> words;
  const Token* second = nullptr;
  for (; stream_.atName(); words.push_back(stream_.take().text)) {
    if (words.size() == 1) second = &stream_.peek();
  }
  if (words.empty()) {
    stream_.expect("identifier");
    return nullptr;
  }
  const Token* misplaced = !second && atSpecifier() ? &stream_.peek() : second;
  ExpressionPtr which = specifier();
  if (stream_.failure()) return nullptr;
  if (which && !its && words.size() == 1 && words.front() == "application") {
    return make(begin, Application{std::move(which)});
  }
  ExpressionPtr container;
  if (stream_.takeWord("of")) {
    container = reference();
    if (!container) return nullptr;
  } else if (misplaced && !its && tells_ == 0) {
    if (second && !which && words.size() == 2 && words.front() == "application") {
      return applicationOfVariable(begin, *second);
    }
    stream_.misplace(*misplaced, "identifier");
    return nullptr;
  }
  if (!which) return make(begin, Name{std::move(words), its, std::move(container)});
  return make(begin, Element{joined(words), std::move(which), std::move(container)});
}

// Outside of every `tell` there is nothing else that `application someName` could mean.
ExpressionPtr ExpressionParser::applicationOfVariable(std::size_t begin, const Token& variable) {
  Name name{{variable.text}, false, nullptr};
  auto operand = std::make_unique<Expression>(Expression{variable.range, std::move(name)});
  return make(begin, Application{std::move(operand)});
}

bool ExpressionParser::atSpecifier() const {
  return stream_.peek().kind == TokenKind::Text || stream_.peek().kind == TokenKind::Number ||
         stream_.atSymbol("(") ||
         (stream_.atSymbol("-") && stream_.peek(1).kind == TokenKind::Number);
}

ExpressionPtr ExpressionParser::specifier() {
  return atSpecifier() ? operand() : nullptr;
}

}  // namespace platform::applescript
