#include "desktop/linux/automation/ScriptElement.h"

#include <utility>

namespace linux_desktop {

using platform::Value;
using platform::port::ElementSpecifier;
using platform::port::ScriptError;
using platform::port::ScriptObject;
using platform::port::ScriptResult;

namespace {

constexpr int kNotUnderstood = -1708;
constexpr int kInvalidIndex = -1719;
constexpr int kNoSuchObject = -1728;

std::string inQuotes(std::string_view name) {
  return "\"" + std::string(name) + "\"";
}

std::string sourceForm(std::string_view className, const ElementSpecifier& which) {
  std::string text(className);
  if (const auto* name = std::get_if<std::string>(&which)) text += " " + inQuotes(*name);
  if (const auto* index = std::get_if<std::int64_t>(&which)) text += " " + std::to_string(*index);
  return text;
}

}  // namespace

ScriptElement& ScriptElement::add(std::string className, std::string name,
                                  std::function<bool()> exists) {
  const std::string own = name.empty() ? className + " 1" : className + " " + inQuotes(name);
  auto object = std::make_shared<ScriptElement>(own + " of " + description_);
  ScriptElement& added = *object;
  children_.push_back(
      {std::move(className), std::move(name), std::move(exists), std::move(object)});
  return added;
}

ScriptResult<std::shared_ptr<ScriptObject>> ScriptElement::element(std::string_view className,
                                                                   const ElementSpecifier& which) {
  const auto* name = std::get_if<std::string>(&which);
  const auto* index = std::get_if<std::int64_t>(&which);
  std::int64_t position = 0;
  for (const Child& child : children_) {
    if (child.className != className || (child.exists && !child.exists())) continue;
    ++position;
    if (name != nullptr ? child.name == *name : position == (index != nullptr ? *index : 1)) {
      return child.object;
    }
  }
  return ScriptError{name != nullptr ? kNoSuchObject : kInvalidIndex,
                     "Can’t get " + sourceForm(className, which) + " of " + description_ + "."};
}

ScriptResult<Value> ScriptElement::property(std::string_view name) {
  if (value && name == "value") return value();
  return ScriptError{kNoSuchObject, "Can’t get " + std::string(name) + " of " + description_ + "."};
}

std::optional<ScriptError> ScriptElement::click() {
  if (onClick) return onClick();
  return ScriptError{kNotUnderstood, description_ + " doesn’t understand the “click” message."};
}

}  // namespace linux_desktop
