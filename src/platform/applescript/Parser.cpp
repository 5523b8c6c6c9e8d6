#include "platform/applescript/Parser.h"

#include <optional>
#include <utility>

#include "platform/applescript/ExpressionParser.h"
#include "platform/applescript/TokenStream.h"

namespace platform::applescript {
namespace {

// Each function that returns an optional returns none after an error, which the stream then holds.
class Parser {
 public:
  explicit Parser(std::string_view source) : stream_(source) {}

  std::variant<Block, ScriptFailure> run() {
    std::optional<Block> script = block();
    if (script && stream_.peek().kind != TokenKind::EndOfScript) stream_.expect("end of line");
    if (stream_.failure()) return *stream_.failure();
    return std::move(*script);
  }

 private:
  using StatementNode = decltype(Statement::node);
  using Node = std::optional<StatementNode>;

  // The statements up to `end`, `else` or the end of the script.
  std::optional<Block> block() {
    Block statements;
    while (true) {
      while (stream_.peek().kind == TokenKind::EndOfLine) stream_.take();
      if (stream_.peek().kind == TokenKind::EndOfScript || stream_.atWord("end") ||
          stream_.atWord("else")) {
        return statements;
      }
      std::optional<Statement> next = statement();
      if (!next) return std::nullopt;
      statements.push_back(std::move(*next));
      if (stream_.atLineEnd()) continue;
      stream_.expectLineEnd();
      return std::nullopt;
    }
  }

  std::optional<Statement> statement() {
    const Nesting nesting(depth_);
    if (nesting.tooDeep()) {
      failTooDeep();
      return std::nullopt;
    }
    const std::size_t begin = stream_.peek().range.begin;
    Node node = statementNode();
    if (!node) return std::nullopt;
    return Statement{stream_.rangeFrom(begin), std::move(*node)};
  }

  void failTooDeep() {
    if (stream_.atWord("tell")) {
      stream_.fail(kTellsTooDeep, "Tell statements are nested too deeply.");
    } else {
      stream_.fail(kStackOverflow, "Stack overflow.");
    }
  }

  Node statementNode() {
    if (stream_.takeWord("tell")) return tell();
    if (stream_.takeWord("if")) return conditional();
    if (stream_.takeWords({"set", "volume", "input", "volume"})) {
      return command<SetInputVolume>();
    }
    if (stream_.takeWord("set")) return assignment();
    if (stream_.takeWord("click")) return click();
    if (stream_.takeWords({"key", "code"})) return command<KeyCode>();
    if (stream_.takeWords({"display", "notification"})) return command<DisplayNotification>();
    return evaluation();
  }

  template <typename Command>
  Node command() {
    ExpressionPtr parameter = expressions_.expression();
    if (!parameter) return std::nullopt;
    return Command{std::move(parameter)};
  }

  Node click() {
    if (stream_.atLineEnd()) return Click{};
    return command<Click>();
  }

  // Several words alone could be anything; only where an object or a value is wanted do they name
  // one.
  Node evaluation() {
    const Token& second = stream_.peek(1);
    ExpressionPtr expression = expressions_.expression();
    if (!expression) return std::nullopt;
    const Name* name = std::get_if<Name>(&expression->node);
    if (name && name->words.size() > 1 && !name->its && !name->container &&
        second.kind == TokenKind::Word) {
      stream_.misplace(second, "identifier");
      return std::nullopt;
    }
    return Evaluation{std::move(expression)};
  }

  Node assignment() {
    const Token& start = stream_.peek();
    if (start.kind != TokenKind::Word || (isReserved(start.text) && start.text != "its")) {
      stream_.expect("variable name or property");
      return std::nullopt;
    }
    ExpressionPtr target = expressions_.reference();
    if (!target || !takeOrExpect("to")) return std::nullopt;
    ExpressionPtr value = expressions_.expression();
    if (!value) return std::nullopt;
    return Set{std::move(target), std::move(value)};
  }

  Node tell() {
    ExpressionPtr target = expressions_.expression();
    if (!target) return std::nullopt;
    const Nesting told(tells_);
    Tell tell{std::move(target), {}};
    if (stream_.takeWord("to")) {
      std::optional<Statement> only = statement();
      if (!only) return std::nullopt;
      tell.body.push_back(std::move(*only));
      return tell;
    }
    std::optional<Block> body = bodyOfLines();
    if (!body || !takeEnd("tell")) return std::nullopt;
    tell.body = std::move(*body);
    return tell;
  }

  Node conditional() {
    If result;
    while (true) {
      ExpressionPtr condition = expressions_.expression();
      if (!condition || !takeOrExpect("then")) return std::nullopt;
      if (result.branches.empty() && !stream_.atLineEnd()) return oneLine(std::move(condition));
      std::optional<Block> body = bodyOfLines();
      if (!body) return std::nullopt;
      result.branches.push_back({std::move(condition), std::move(*body)});
      if (!stream_.takeWords({"else", "if"})) break;
    }
    if (stream_.takeWord("else")) {
      std::optional<Block> otherwise = bodyOfLines();
      if (!otherwise) return std::nullopt;
      result.otherwise = std::move(*otherwise);
    }
    if (!takeEnd("if")) return std::nullopt;
    return result;
  }

  Node oneLine(ExpressionPtr condition) {
    std::optional<Statement> only = statement();
    if (!only) return std::nullopt;
    If result;
    result.branches.push_back({std::move(condition), {}});
    result.branches.back().body.push_back(std::move(*only));
    return result;
  }

  std::optional<Block> bodyOfLines() {
    if (stream_.atLineEnd()) return block();
    stream_.expectLineEnd();
    return std::nullopt;
  }

  bool takeEnd(std::string_view kind) {
    if (!takeOrExpect("end")) return false;
    return stream_.atLineEnd() || takeOrExpect(kind);
  }

  bool takeOrExpect(std::string_view word) {
    if (stream_.takeWord(word)) return true;
    stream_.expect("“" + std::string(word) + "”");
    return false;
  }

  TokenStream stream_;
  int depth_ = 0;
  int tells_ = 0;
  ExpressionParser expressions_{stream_, tells_};
};

}  // namespace

std::variant<Block, ScriptFailure> parse(std::string_view source) {
  return Parser(source).run();
}

}  // namespace platform::applescript
