#pragma once

#include <optional>
#include <string_view>

#include "platform/applescript/Ast.h"
#include "platform/applescript/ExpressionEvaluator.h"
#include "platform/applescript/RunScript.h"

namespace platform::applescript {

/// Runs the statements of a script in order, until the end or the first failure.
class Evaluator {
 public:
  /// `source` is the text that the tree was made from. Both must outlive the run.
  Evaluator(std::string_view source, port::Automation* automation)
      : state_{automation, source, {}, {}, {}} {}
  Evaluator(const Evaluator&) = delete;
  Evaluator& operator=(const Evaluator&) = delete;

  ScriptOutcome run(const Block& script);

 private:
  // Each is false after a failure, which the state then holds.
  bool execute(const Block& block);
  bool execute(const Tell& tell, SourceRange range);
  bool execute(const If& conditional, SourceRange range);
  bool execute(const Set& assignment, SourceRange range);
  bool execute(const SetInputVolume& command, SourceRange range);
  bool execute(const Click& command, SourceRange range);
  bool execute(const KeyCode& command, SourceRange range);
  bool execute(const DisplayNotification& command, SourceRange range);
  bool execute(const Evaluation& evaluation, SourceRange range);

  bool setProperty(const Name& name, const Item& value, SourceRange range);
  bool refuseSetting(const Item& value, SourceRange target);
  std::optional<Item> parameter(const Expression& expression, CoercedType type);
  bool finishCommand(const std::optional<port::ScriptError>& error, SourceRange range);

  ScriptState state_;
  ExpressionEvaluator expressions_{state_};
  std::optional<Item> result_;
};

}  // namespace platform::applescript
