#include "platform/applescript/Evaluator.h"

#include <algorithm>
#include <utility>

namespace platform::applescript {
namespace {

std::string notUnderstood(std::string_view object, std::string_view command) {
  return std::string(object) + " doesn’t understand the “" + std::string(command) + "” message.";
}

// What commands outside of every `tell` go to.
constexpr std::string_view kScriptItself = "«script»";

}  // namespace

ScriptOutcome Evaluator::run(const Block& script) {
  if (!execute(script)) return *state_.failure;
  const Value* value = result_ ? valueIn(*result_) : nullptr;
  return value ? std::optional<Value>(*value) : std::nullopt;
}

bool Evaluator::execute(const Block& block) {
  return std::all_of(block.begin(), block.end(), [this](const Statement& statement) {
    return std::visit([&](const auto& node) { return execute(node, statement.range); },
                      statement.node);
  });
}

bool Evaluator::execute(const Tell& tell, SourceRange) {
  std::optional<Item> target = expressions_.object(*tell.target);
  if (!target) return false;
  const std::optional<Item> outer = std::exchange(state_.target, std::move(target));
  const bool done = execute(tell.body);
  state_.target = outer;
  return done;
}

bool Evaluator::execute(const If& conditional, SourceRange) {
  for (const If::Branch& branch : conditional.branches) {
    const std::optional<Item> truth = parameter(*branch.condition, CoercedType::Boolean);
    if (!truth) return false;
    if (booleanOf(*truth) == true) return execute(branch.body);
  }
  return execute(conditional.otherwise);
}

bool Evaluator::execute(const Set& assignment, SourceRange) {
  const std::optional<Item> value = expressions_.value(*assignment.value);
  if (!value) return false;
  const Expression& target = *assignment.target;
  const Name* name = std::get_if<Name>(&target.node);
  if (!name) return refuseSetting(*value, target.range);
  if (name->words.size() == 1 && !name->its && !name->container) {
    state_.variables.insert_or_assign(name->words.front(), *value);
  } else if (!setProperty(*name, *value, target.range)) {
    return false;
  }
  result_ = value;
  return true;
}

bool Evaluator::setProperty(const Name& name, const Item& value, SourceRange range) {
  const std::optional<Item> container = expressions_.container(name.container, range);
  if (!container) return false;
  const auto* reference = std::get_if<Reference>(&*container);
  if (!reference) return refuseSetting(value, range);
  const Value* plain = valueIn(value);
  if (!plain) {
    state_.fail(kCannotMake, "Can’t make " + sourceForm(value) + " into the expected type.", range);
    return false;
  }
  const auto error = reference->object->setProperty(joined(name.words), *plain);
  if (!error) return true;
  state_.fail({error->number, error->message, {}, *reference->application}, range);
  return false;
}

bool Evaluator::refuseSetting(const Item& value, SourceRange target) {
  const std::string text(state_.source.substr(target.begin, target.end - target.begin));
  state_.fail(kCannotSet, "Can’t set " + text + " to " + sourceForm(value) + ".", target);
  return false;
}

bool Evaluator::execute(const SetInputVolume& command, SourceRange range) {
  const std::optional<Item> level = parameter(*command.level, CoercedType::Integer);
  if (!level || !state_.reaches(state_.application(), range)) return false;
  const std::int64_t clamped = std::clamp<std::int64_t>(*integerOf(*level), 0, 100);
  return finishCommand(state_.automation->setInputVolume(static_cast<int>(clamped)), range);
}

bool Evaluator::execute(const Click& command, SourceRange range) {
  if (!command.target && !state_.target) {
    state_.fail(kNotUnderstood, notUnderstood(kScriptItself, "click"), range);
    return false;
  }
  const std::optional<Item> target =
      command.target ? expressions_.object(*command.target) : state_.target;
  if (!target) return false;
  const auto* reference = std::get_if<Reference>(&*target);
  if (!reference) {
    state_.fail(kNotUnderstood, notUnderstood(sourceForm(*target), "click"), range);
    return false;
  }
  if (const auto error = reference->object->click()) {
    state_.fail({error->number, error->message, {}, *reference->application}, range);
    return false;
  }
  result_ = target;
  return true;
}

bool Evaluator::execute(const KeyCode& command, SourceRange range) {
  const std::optional<Item> code = parameter(*command.code, CoercedType::Integer);
  const std::string application = state_.application();
  if (!code || !state_.reaches(application, range)) return false;
  if (application.empty()) {
    state_.fail(kNotUnderstood, notUnderstood(kScriptItself, "key code"), range);
    return false;
  }
  return finishCommand(state_.automation->keyCode(*integerOf(*code)), range);
}

bool Evaluator::execute(const DisplayNotification& command, SourceRange range) {
  const std::optional<Item> text = parameter(*command.text, CoercedType::Text);
  if (!text || !state_.reaches(state_.application(), range)) return false;
  return finishCommand(state_.automation->displayNotification(*textOf(*text)), range);
}

bool Evaluator::execute(const Evaluation& evaluation, SourceRange) {
  result_ = expressions_.value(*evaluation.expression);
  return result_.has_value();
}

std::optional<Item> Evaluator::parameter(const Expression& expression, CoercedType type) {
  const std::optional<Item> item = expressions_.value(expression);
  if (!item) return std::nullopt;
  return expressions_.coerced(*item, type, expression.range);
}

// A command gives nothing, and so does a script that ends with one.
bool Evaluator::finishCommand(const std::optional<port::ScriptError>& error, SourceRange range) {
  if (error) {
    state_.fail({error->number, error->message, {}, state_.application()}, range);
    return false;
  }
  result_.reset();
  return true;
}

}  // namespace platform::applescript
