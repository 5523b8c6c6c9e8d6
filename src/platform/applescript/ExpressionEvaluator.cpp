#include "platform/applescript/ExpressionEvaluator.h"

#include <utility>

namespace platform::applescript {
namespace {

// Standard commands outside of any application are carried out by this one.
constexpr std::string_view kDefaultApplication = "System Events";

using Found = std::variant<Item, ScriptFailure>;

ScriptFailure raisedBy(const Reference& reference, port::ScriptError error) {
  return {error.number, std::move(error.message), {}, *reference.application};
}

ScriptFailure cannotGet(std::string_view what, const Item& container) {
  return {kNoSuchObject,
          "Can’t get " + std::string(what) + " of " + sourceForm(container) + ".",
          {},
          {}};
}

bool meansAbsent(const ScriptFailure& failure) {
  constexpr int kInvalidIndex = -1719;
  return failure.number == kNoSuchObject || failure.number == kInvalidIndex;
}

Found entry(const Value& value, const std::string& name, const Item& container) {
  const auto* record = std::get_if<Dictionary>(&value.storage());
  if (!record) return cannotGet(name, container);
  const auto found = record->find(name);
  return found == record->end() ? Item(Missing{}) : itemOf(found->second);
}

Found property(const Item& container, const std::string& name) {
  if (const Value* value = valueIn(container)) return entry(*value, name, container);
  const auto* reference = std::get_if<Reference>(&container);
  if (!reference) return cannotGet(name, container);
  port::ScriptResult<Value> result = reference->object->property(name);
  if (auto* error = std::get_if<port::ScriptError>(&result)) {
    return raisedBy(*reference, std::move(*error));
  }
  return itemOf(std::move(std::get<Value>(result)));
}

Found element(const Item& container, const std::string& className,
              const port::ElementSpecifier& which) {
  const std::string blank = std::holds_alternative<std::monostate>(which) ? "" : " ";
  std::string text = className + blank + sourceForm(which);
  const auto* reference = std::get_if<Reference>(&container);
  if (!reference) return cannotGet(text, container);
  auto result = reference->object->element(className, which);
  if (auto* error = std::get_if<port::ScriptError>(&result)) {
    return raisedBy(*reference, std::move(*error));
  }
  auto object = std::get<std::shared_ptr<port::ScriptObject>>(std::move(result));
  if (!object) return cannotGet(text, container);
  return Reference{std::move(object), reference->application, std::move(text)};
}

std::optional<port::ElementSpecifier> specifierOf(const Item& item) {
  const Value* value = valueIn(item);
  if (!value) return std::nullopt;
  if (auto name = value->as<std::string>()) return *name;
  if (auto index = value->as<std::int64_t>()) return *index;
  return std::nullopt;
}

std::string joinedWithoutLast(std::vector<std::string> words) {
  words.pop_back();
  return joined(words);
}

struct TypeRow {
  std::string_view name;
  std::optional<Item> (*make)(const Item&);
};

template <auto convert>
std::optional<Item> made(const Item& item) {
  auto converted = convert(item);
  if (!converted) return std::nullopt;
  return itemOf(std::move(*converted));
}

std::optional<std::string> itemAsText(const Item& item) {
  return textOf(item);
}

// In the order of CoercedType.
constexpr TypeRow kTypes[] = {
    {"text", &made<itemAsText>}, {"integer", &made<integerOf>}, {"boolean", &made<booleanOf>}};

}  // namespace

std::string ScriptState::application() const {
  const Reference* reference = target ? std::get_if<Reference>(&*target) : nullptr;
  return reference ? *reference->application : std::string();
}

std::nullopt_t ScriptState::fail(ScriptFailure reason, SourceRange range) {
  reason.range = range;
  failure = std::move(reason);
  return std::nullopt;
}

std::nullopt_t ScriptState::fail(int number, std::string message, SourceRange range) {
  return fail(ScriptFailure{number, std::move(message), {}, {}}, range);
}

bool ScriptState::reaches(const std::string& applicationName, SourceRange range) {
  if (automation) return true;
  const std::string name =
      applicationName.empty() ? std::string(kDefaultApplication) : applicationName;
  fail({kNotAuthorized, "Not authorized to send Apple events to " + name + ".", {}, name}, range);
  return false;
}

std::optional<Item> ExpressionEvaluator::value(const Expression& expression) {
  return evaluate(expression, Wanted::Value);
}

std::optional<Item> ExpressionEvaluator::object(const Expression& expression) {
  return evaluate(expression, Wanted::Object);
}

std::optional<Item> ExpressionEvaluator::container(const ExpressionPtr& container,
                                                   SourceRange range) {
  if (container) return object(*container);
  if (state_.target) return state_.target;
  return state_.fail(kNoSuchObject, "Can’t get it.", range);
}

std::optional<Item> ExpressionEvaluator::evaluate(const Expression& expression, Wanted wanted) {
  return std::visit([&](const auto& node) { return evaluate(node, expression.range, wanted); },
                    expression.node);
}

std::optional<Item> ExpressionEvaluator::evaluate(const Literal& literal, SourceRange, Wanted) {
  return literal.value;
}

std::optional<Item> ExpressionEvaluator::evaluate(const MissingValue&, SourceRange, Wanted) {
  return Missing{};
}

std::optional<Item> ExpressionEvaluator::evaluate(const It&, SourceRange range, Wanted) {
  return container(nullptr, range);
}

std::optional<Item> ExpressionEvaluator::evaluate(const VolumeSettings&, SourceRange range,
                                                  Wanted) {
  if (!state_.reaches(state_.application(), range)) return std::nullopt;
  port::ScriptResult<Dictionary> result = state_.automation->volumeSettings();
  if (auto* error = std::get_if<port::ScriptError>(&result)) {
    return state_.fail({error->number, error->message, {}, state_.application()}, range);
  }
  return itemOf(std::get<Dictionary>(std::move(result)));
}

std::optional<Item> ExpressionEvaluator::evaluate(const Application& application, SourceRange range,
                                                  Wanted) {
  const std::optional<Item> name = value(*application.name);
  return name ? applicationNamed(*name, range) : std::nullopt;
}

// That an application is not there, no application says.
std::optional<Item> ExpressionEvaluator::applicationNamed(const Item& item, SourceRange range) {
  const Value* value = valueIn(item);
  const auto name = value ? value->as<std::string>() : std::nullopt;
  const std::string text = "application " + sourceForm(item);
  const ScriptFailure absent{kNoSuchObject, "Can’t get " + text + ".", {}, {}};
  if (!name) return state_.fail(absent, range);
  if (!state_.reaches(*name, range)) return std::nullopt;
  auto result = state_.automation->application(*name);
  if (auto* error = std::get_if<port::ScriptError>(&result)) {
    const std::string raisedBy = error->number == kNotAuthorized ? *name : std::string();
    return state_.fail({error->number, error->message, {}, raisedBy}, range);
  }
  auto object = std::get<std::shared_ptr<port::ScriptObject>>(std::move(result));
  if (!object) return state_.fail(absent, range);
  return Reference{std::move(object), std::make_shared<const std::string>(*name), text};
}

std::optional<Item> ExpressionEvaluator::evaluate(const Name& name, SourceRange range,
                                                  Wanted wanted) {
  const bool plain = !name.its && !name.container && name.words.size() == 1;
  if (plain) {
    if (const Item* known = variable(name.words.front())) return *known;
    if (!state_.target) return undefined(range);
  }
  if (const Item* named = applicationVariable(name)) return applicationNamed(*named, range);
  const std::optional<Item> from = container(name.container, range);
  if (!from) return std::nullopt;
  Found found = lookUp(*from, name.words, wanted);
  const auto* failure = std::get_if<ScriptFailure>(&found);
  if (failure && plain && wanted == Wanted::Value && meansAbsent(*failure)) return undefined(range);
  return settled(std::move(found), range);
}

std::optional<Item> ExpressionEvaluator::evaluate(const Element& node, SourceRange range, Wanted) {
  const std::optional<Item> from = container(node.container, range);
  if (!from) return std::nullopt;
  const std::optional<port::ElementSpecifier> which = specifier(*node.which);
  if (!which) return std::nullopt;
  return settled(element(*from, node.className, *which), range);
}

std::optional<Item> ExpressionEvaluator::evaluate(const Coercion& coercion, SourceRange range,
                                                  Wanted) {
  const std::optional<Item> operand = value(*coercion.operand);
  if (!operand) return std::nullopt;
  return coerced(*operand, coercion.type, range);
}

std::optional<Item> ExpressionEvaluator::evaluate(const Comparison& comparison, SourceRange,
                                                  Wanted) {
  const std::optional<Item> left = value(*comparison.left);
  if (!left) return std::nullopt;
  const std::optional<Item> right = value(*comparison.right);
  if (!right) return std::nullopt;
  return itemOf(areEqual(*left, *right) != comparison.negated);
}

std::optional<Item> ExpressionEvaluator::coerced(const Item& item, CoercedType type,
                                                 SourceRange range) {
  const Value* value = valueIn(item);
  const bool isText = value && std::holds_alternative<std::string>(value->storage());
  if (isText && type == CoercedType::Text) return item;
  const TypeRow& row = kTypes[static_cast<std::size_t>(type)];
  if (std::optional<Item> made = row.make(item)) return made;
  return state_.fail(kCannotMake,
                     "Can’t make " + sourceForm(item) + " into type " + std::string(row.name) + ".",
                     range);
}

std::optional<port::ElementSpecifier> ExpressionEvaluator::specifier(const Expression& which) {
  const std::optional<Item> item = value(which);
  if (!item) return std::nullopt;
  if (auto specifier = specifierOf(*item)) return specifier;
  return state_.fail(kCannotMake, "Can’t make " + sourceForm(*item) + " into type integer.",
                     which.range);
}

// A name's last word may be a variable that says which element is meant: `checkbox wantedName`.
Found ExpressionEvaluator::lookUp(const Item& container, const std::vector<std::string>& words,
                                  Wanted wanted) const {
  const Item* last = words.size() > 1 ? variable(words.back()) : nullptr;
  const auto which = last && !valueIn(container) ? specifierOf(*last) : std::nullopt;
  if (which) return element(container, joinedWithoutLast(words), *which);
  const std::string name = joined(words);
  const auto asProperty = [&] { return property(container, name); };
  const auto asElement = [&] { return element(container, name, std::monostate{}); };
  const bool objectFirst = wanted == Wanted::Object;
  Found first = objectFirst ? asElement() : asProperty();
  const auto* failure = std::get_if<ScriptFailure>(&first);
  if (!failure || failure->number != kNoSuchObject) return first;
  Found second = objectFirst ? asProperty() : asElement();
  failure = std::get_if<ScriptFailure>(&second);
  return failure && meansAbsent(*failure) ? first : second;
}

const Item* ExpressionEvaluator::variable(std::string_view word) const {
  const auto found = state_.variables.find(word);
  return found == state_.variables.end() ? nullptr : &found->second;
}

const Item* ExpressionEvaluator::applicationVariable(const Name& name) const {
  const bool fits = !name.its && !name.container && name.words.size() == 2;
  return fits && name.words.front() == "application" ? variable(name.words.back()) : nullptr;
}

std::nullopt_t ExpressionEvaluator::undefined(SourceRange range) {
  const std::string word(state_.source.substr(range.begin, range.end - range.begin));
  return state_.fail(kVariableNotDefined, "The variable " + word + " is not defined.", range);
}

std::optional<Item> ExpressionEvaluator::settled(Found found, SourceRange range) {
  if (auto* failure = std::get_if<ScriptFailure>(&found)) return state_.fail(*failure, range);
  return std::get<Item>(std::move(found));
}

}  // namespace platform::applescript
