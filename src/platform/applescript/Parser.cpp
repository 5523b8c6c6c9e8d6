#include <algorithm>
#include <utility>

#include "platform/applescript/Script.h"

namespace platform::applescript {
namespace {

/// How deep statements may be nested, and how deep the expressions in one.
constexpr int kMaxDepth = 100;

struct CommandRow {
  std::string_view words;
  Verb verb;
};
constexpr CommandRow kCommands[] = {{"click", Verb::Click},
                                    {"display notification", Verb::DisplayNotification},
                                    {"key code", Verb::KeyCode},
                                    {"set volume input volume", Verb::SetInputVolume}};

bool isName(const Token& token) {
  return token.kind == TokenKind::Word && !isReserved(token.text);
}

bool beginsOperand(const Token& token) {
  return token.kind == TokenKind::Number || token.kind == TokenKind::Text || isName(token);
}

class Parser {
 public:
  explicit Parser(std::string_view source) : tokens_(tokens(source)) {}

  Block script() {
    Block statements = block();
    if (peek().kind != TokenKind::EndOfScript) expected("end of line");
    return statements;
  }

 private:
  /// The token that comes next, or `ahead` after it; the last one for ever at the end.
  [[nodiscard]] const Token& peek(std::size_t ahead = 0) const {
    return tokens_[std::min(next_ + ahead, tokens_.size() - 1)];
  }
  const Token& take() {
    const Token& token = peek();
    if (next_ + 1 < tokens_.size()) ++next_;
    return token;
  }
  [[nodiscard]] bool at(std::string_view text, TokenKind kind = TokenKind::Word) const {
    return peek().kind == kind && peek().text == text;
  }
  /// Takes these words, a blank between two, or nothing.
  bool takeWords(std::string_view words) {
    std::size_t count = 0;
    for (std::size_t begin = 0; begin <= words.size(); ++count) {
      const std::size_t end = std::min(words.find(' ', begin), words.size());
      const Token& token = peek(count);
      const std::string_view word = words.substr(begin, end - begin);
      if (token.kind != TokenKind::Word || token.text != word) return false;
      begin = end + 1;
    }
    next_ += count;
    return true;
  }
  void expect(std::string_view text, TokenKind kind = TokenKind::Word) {
    if (!at(text, kind)) expected("“" + std::string(text) + "”");
    take();
  }
  [[nodiscard]] bool atLineEnd() const {
    return peek().kind == TokenKind::EndOfLine || peek().kind == TokenKind::EndOfScript;
  }
  [[nodiscard]] SourceRange rangeFrom(std::size_t begin) const {
    return {begin, tokens_[next_ - 1].range.end};
  }

  [[noreturn]] void fail(int number, std::string message) const {
    const bool speaks = peek().kind == TokenKind::Bad && !peek().text.empty();
    throw ScriptFailure{speaks ? kUnexpectedElement : number,
                        speaks ? peek().text : std::move(message),
                        peek().range,
                        {}};
  }
  [[noreturn]] void expected(std::string_view what) const {
    fail(kUnexpectedElement,
         "Expected " + std::string(what) + " but found " + described(peek()) + ".");
  }
  [[noreturn]] void lineShouldEnd() const {
    const Token& last = tokens_[next_ - 1];
    if (!beginsOperand(peek()) || !beginsOperand(last)) expected("end of line");
    fail(kMisplacedElement,
         "A " + described(peek()) + " can’t go after this " + described(last) + ".");
  }

  // The statements up to `end` or the end of the script.
  Block block() {
    Block statements;
    while (true) {
      while (peek().kind == TokenKind::EndOfLine) take();
      if (peek().kind == TokenKind::EndOfScript || at("end")) return statements;
      statements.push_back(statement());
      if (!atLineEnd()) lineShouldEnd();
    }
  }

  Statement statement() {
    if (depth_ == kMaxDepth && at("tell")) {
      fail(kTellsTooDeep, "Tell statements are nested too deeply.");
    }
    if (depth_ == kMaxDepth) fail(kStackOverflow, "Stack overflow.");
    ++depth_;
    const std::size_t begin = peek().range.begin;
    auto node = statementNode();
    --depth_;
    return {rangeFrom(begin), std::move(node)};
  }

  decltype(Statement::node) statementNode() {
    for (const auto& [words, verb] : kCommands) {
      if (takeWords(words)) return Command{verb, expression()};
    }
    if (takeWords("tell")) return withBody<Tell>("tell", operand());
    if (takeWords("if")) {
      ExpressionPtr condition = expression();
      expect("then");
      return withBody<If>("if", std::move(condition));
    }
    if (!takeWords("set")) expected("statement");
    if (!isName(peek())) expected("variable name");
    std::string variable = take().text;
    if (!at("to") && beginsOperand(peek())) lineShouldEnd();
    expect("to");
    return Set{std::move(variable), expression()};
  }

  // The lines between the head of a statement and its end.
  template <typename Node>
  Node withBody(std::string_view kind, ExpressionPtr head) {
    if (!atLineEnd()) lineShouldEnd();
    Block body = block();
    expect("end");
    expect(kind);
    return {std::move(head), std::move(body)};
  }

  template <typename Node>
  ExpressionPtr make(std::size_t begin, Node node) const {
    return std::make_unique<Expression>(Expression{rangeFrom(begin), std::move(node)});
  }

  ExpressionPtr expression() {
    const std::size_t begin = peek().range.begin;
    ExpressionPtr left = coercion();
    if (!takeWords("is not equal to")) return left;
    ExpressionPtr right = coercion();
    return make(begin, Difference{std::move(left), std::move(right)});
  }

  ExpressionPtr coercion() {
    const std::size_t begin = peek().range.begin;
    ExpressionPtr value = operand();
    if (!takeWords("as")) return value;
    expect("text");
    return make(begin, AsText{std::move(value)});
  }

  ExpressionPtr operand() {
    if (nested_ == kMaxDepth) fail(kStackOverflow, "Stack overflow.");
    ++nested_;
    ExpressionPtr result = operandNode();
    --nested_;
    return result;
  }

  ExpressionPtr operandNode() {
    const std::size_t begin = peek().range.begin;
    if (peek().kind == TokenKind::Number) return make(begin, Literal{Value(take().number)});
    if (peek().kind == TokenKind::Text) return make(begin, Literal{Value(take().text)});
    if (takeWords("get volume settings")) return make(begin, VolumeSettings{});
    if (at("(", TokenKind::Symbol)) return parenthesized();
    return name(begin);
  }

  ExpressionPtr parenthesized() {
    take();
    ExpressionPtr inner = expression();
    expect(")", TokenKind::Symbol);
    return inner;
  }

  // Without a dictionary, a run of words is one name, as long as it can be.
  ExpressionPtr name(std::size_t begin) {
    Name name;
    name.its = takeWords("its");
    if (!isName(peek())) expected(name.its ? "identifier" : "expression");
    for (; isName(peek()); name.words += take().text) {
      if (!name.words.empty()) name.words += ' ';
    }
    if (peek().kind == TokenKind::Number) {
      name.which = take().number;
    } else if (peek().kind == TokenKind::Text) {
      name.which = take().text;
    }
    if (takeWords("of")) name.container = operand();
    return make(begin, std::move(name));
  }

  std::vector<Token> tokens_;
  std::size_t next_ = 0;
  int depth_ = 0;
  int nested_ = 0;
};

}  // namespace

Block parse(std::string_view source) {
  return Parser(source).script();
}

}  // namespace platform::applescript
