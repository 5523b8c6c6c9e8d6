#include <algorithm>
#include <map>
#include <utility>

#include "platform/applescript/Script.h"

namespace platform::applescript {
namespace {

/// What an expression gives: a value, or none for `missing value`.
using Item = std::optional<Value>;

/// An object of an application, whose name stands as the script wrote it.
struct Object {
  std::shared_ptr<port::ScriptObject> object;
  std::string application;
};

/// For messages.
std::string shown(const Item& item) {
  if (!item) return "missing value";
  if (const auto text = item->as<std::string>()) return "\"" + *text + "\"";
  return textOf(*item).value_or("a record");
}

std::string shown(const Name& name) {
  if (const auto* text = std::get_if<std::string>(&name.which)) {
    return name.words + " \"" + *text + "\"";
  }
  const auto* index = std::get_if<std::int64_t>(&name.which);
  return index != nullptr ? name.words + ' ' + std::to_string(*index) : name.words;
}

std::optional<std::string> itemText(const Item& item) {
  return item ? textOf(*item) : std::nullopt;
}

class Evaluator {
 public:
  explicit Evaluator(port::Automation* automation) : automation_(automation) {}

  std::optional<Value> run(const Block& script) {
    execute(script);
    return std::move(result_);
  }

 private:
  // --- Statements ---
  void execute(const Block& block) {
    for (const Statement& statement : block) {
      std::visit([&](const auto& node) { execute(node, statement.range); }, statement.node);
    }
  }

  void execute(const Tell& tell, SourceRange /*range*/) {
    Object target = object(*tell.target);
    const std::optional<Object> outer = std::exchange(target_, std::move(target));
    execute(tell.body);
    target_ = outer;
  }

  void execute(const If& conditional, SourceRange /*range*/) {
    const Item truth = value(*conditional.condition);
    if (made<bool>(truth, "boolean", conditional.condition->range)) execute(conditional.body);
  }

  void execute(const Set& assignment, SourceRange /*range*/) {
    result_ = value(*assignment.value);
    variables_.insert_or_assign(assignment.variable, result_);
  }

  void execute(const Command& command, SourceRange range) {
    const auto error = carryOut(command, range);
    if (error) raise(*error, told(), range);
    result_.reset();
  }

  std::optional<port::ScriptError> carryOut(const Command& command, SourceRange range) {
    const Expression& parameter = *command.parameter;
    switch (command.verb) {
      case Verb::Click:
        return object(parameter).object->click();
      case Verb::DisplayNotification: {
        const auto text = made<std::string>(value(parameter), "text", parameter.range);
        return automation(told(), range).displayNotification(text);
      }
      case Verb::KeyCode: {
        const std::int64_t code = made<std::int64_t>(value(parameter), "integer", parameter.range);
        if (target_) return automation(told(), range).keyCode(code);
        break;
      }
      case Verb::SetInputVolume: {
        const std::int64_t level = made<std::int64_t>(value(parameter), "integer", parameter.range);
        return automation(told(), range)
            .setInputVolume(static_cast<int>(std::clamp<std::int64_t>(level, 0, 100)));
      }
    }
    fail(kNotUnderstood, "«script» doesn’t understand the “key code” message.", range);
  }

  // --- Values ---
  Item value(const Expression& expression) {
    return std::visit([&](const auto& node) { return value(node, expression.range); },
                      expression.node);
  }

  Item value(const Literal& literal, SourceRange /*range*/) { return literal.value; }

  Item value(const VolumeSettings& /*settings*/, SourceRange range) {
    return taken(automation(told(), range).volumeSettings(), told(), range);
  }

  Item value(const Name& name, SourceRange range) {
    if (!std::holds_alternative<std::monostate>(name.which)) {
      fail(kCannotMake, "Can’t make " + shown(name) + " into the expected type.", range);
    }
    if (!name.its && !name.container) return variable(name.words, range);
    const bool isEntry =
        name.container && std::holds_alternative<VolumeSettings>(name.container->node);
    if (isEntry) return entry(value(*name.container), name.words);
    const Object owner = container(name, range);
    return taken(owner.object->property(name.words), owner.application, range);
  }

  Item value(const AsText& coercion, SourceRange range) {
    const Item item = value(*coercion.operand);
    if (auto text = itemText(item)) return std::move(*text);
    fail(kCannotMake, "Can’t make " + shown(item) + " into type text.", range);
  }

  Item value(const Difference& difference, SourceRange /*range*/) {
    const Item left = value(*difference.left);
    return left != value(*difference.right);
  }

  Item variable(const std::string& word, SourceRange range) {
    const auto found = variables_.find(word);
    if (found != variables_.end()) return found->second;
    fail(kVariableNotDefined, "The variable " + word + " is not defined.", range);
  }

  static Item entry(const Item& record, const std::string& name) {
    const Dictionary settings = record->as<Dictionary>().value_or(Dictionary());
    const auto found = settings.find(name);
    return found == settings.end() ? Item() : found->second;
  }

  /// The item if it is of that type.
  template <typename T>
  T made(const Item& item, std::string_view type, SourceRange range) const {
    if (auto value = item ? item->as<T>() : std::nullopt) return *value;
    fail(kCannotMake, "Can’t make " + shown(item) + " into type " + std::string(type) + ".", range);
  }

  // --- Objects ---
  Object object(const Expression& expression) {
    const auto* name = std::get_if<Name>(&expression.node);
    if (name == nullptr) fail(kNoSuchObject, "Can’t get an object.", expression.range);
    const auto* text = std::get_if<std::string>(&name->which);
    const bool isApplication = name->words == "application" && !name->its && !name->container;
    if (text != nullptr && isApplication) return application(*text, expression.range);
    const Object owner = container(*name, expression.range);
    auto element =
        taken(owner.object->element(name->words, name->which), owner.application, expression.range);
    if (!element) fail(kNoSuchObject, "Can’t get " + shown(*name) + ".", expression.range);
    return {std::move(element), owner.application};
  }

  Object container(const Name& name, SourceRange range) {
    if (name.container) return object(*name.container);
    if (!target_) fail(kNoSuchObject, "Can’t get " + shown(name) + ".", range);
    return *target_;
  }

  // That an application is not there, no application says.
  Object application(const std::string& name, SourceRange range) {
    auto result = automation(name, range).application(name);
    const auto* error = std::get_if<port::ScriptError>(&result);
    const bool isRefused = error != nullptr && error->number == kNotAuthorized;
    auto object = taken(std::move(result), isRefused ? name : std::string(), range);
    if (!object) fail(kNoSuchObject, "Can’t get application \"" + name + "\".", range);
    return {std::move(object), name};
  }

  // --- The desktop ---
  /// The name of the application that is being told; empty outside of every `tell`.
  [[nodiscard]] std::string told() const { return target_ ? target_->application : std::string(); }

  port::Automation& automation(const std::string& application, SourceRange range) const {
    if (automation_ != nullptr) return *automation_;
    // Standard commands outside of any application are carried out by this one.
    const std::string name = application.empty() ? "System Events" : application;
    fail(kNotAuthorized, "Not authorized to send Apple events to " + name + ".", range, name);
  }

  template <typename T>
  static T taken(port::ScriptResult<T> result, const std::string& application, SourceRange range) {
    if (const auto* error = std::get_if<port::ScriptError>(&result)) {
      raise(*error, application, range);
    }
    return std::get<T>(std::move(result));
  }

  [[noreturn]] static void raise(const port::ScriptError& error, const std::string& application,
                                 SourceRange range) {
    fail(error.number, error.message, range, application);
  }

  [[noreturn]] static void fail(int number, std::string message, SourceRange range,
                                std::string application = {}) {
    throw ScriptFailure{number, std::move(message), range, std::move(application)};
  }

  port::Automation* automation_;
  std::map<std::string, Item, std::less<>> variables_;
  std::optional<Object> target_;
  std::optional<Value> result_;
};

}  // namespace

std::optional<Value> evaluate(const Block& script, port::Automation* automation) {
  return Evaluator(automation).run(script);
}

ScriptOutcome runScript(std::string_view source, port::Automation* automation) {
  try {
    return evaluate(parse(source), automation);
  } catch (const ScriptFailure& failure) {
    return failure;
  }
}

std::optional<std::string> textOf(const Value& value) {
  if (const auto truth = value.as<bool>()) return *truth ? "true" : "false";
  if (const auto number = value.as<std::int64_t>()) return std::to_string(*number);
  return value.as<std::string>();
}

}  // namespace platform::applescript
