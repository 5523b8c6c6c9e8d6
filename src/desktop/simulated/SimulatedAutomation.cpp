#include "desktop/simulated/SimulatedAutomation.h"

namespace simulated {

using platform::Value;
using platform::port::ElementSpecifier;
using platform::port::ScriptError;
using platform::port::ScriptObject;
using platform::port::ScriptResult;

ScriptResult<std::shared_ptr<ScriptObject>> SimulatedScriptObject::element(
    std::string_view className, const ElementSpecifier& which) {
  const auto* name = std::get_if<std::string>(&which);
  const auto* index = std::get_if<std::int64_t>(&which);
  std::int64_t position = 0;
  for (const Element& element : elements_) {
    if (element.className != className) continue;
    ++position;
    if (name != nullptr ? element.name == *name : position == (index != nullptr ? *index : 1)) {
      return element.object;
    }
  }
  return ScriptError{name != nullptr ? -1728 : -1719, "Can’t get " + std::string(className) + "."};
}

ScriptResult<Value> SimulatedScriptObject::property(std::string_view name) {
  const auto found = properties.find(name);
  if (found == properties.end()) return ScriptError{-1728, "Can’t get " + std::string(name) + "."};
  return found->second;
}

std::optional<ScriptError> SimulatedScriptObject::click() {
  ++clicks;
  if (onClick) onClick(*this);
  return std::nullopt;
}

SimulatedScriptObject& SimulatedScriptObject::add(std::string className, std::string name) {
  elements_.push_back(
      {std::move(className), std::move(name), std::make_shared<SimulatedScriptObject>()});
  return *elements_.back().object;
}

ScriptResult<std::shared_ptr<ScriptObject>> SimulatedAutomation::application(
    std::string_view name) {
  if (failure) return *failure;
  const auto found = applications_.find(name);
  if (found == applications_.end()) {
    return ScriptError{-1728, "Can’t get application \"" + std::string(name) + "\"."};
  }
  return found->second;
}

std::optional<ScriptError> SimulatedAutomation::keyCode(std::int64_t code) {
  log_.add("automation.keyCode " + std::to_string(code));
  return failure;
}

ScriptResult<platform::Dictionary> SimulatedAutomation::volumeSettings() {
  if (failure) return *failure;
  return volume;
}

std::optional<ScriptError> SimulatedAutomation::setInputVolume(int level) {
  log_.add("automation.setInputVolume " + std::to_string(level));
  if (failure) return failure;
  if (!setInputVolumeFailure) volume.insert_or_assign("input volume", level);
  return setInputVolumeFailure;
}

std::optional<ScriptError> SimulatedAutomation::displayNotification(std::string_view text) {
  log_.add("automation.displayNotification " + std::string(text));
  return failure;
}

SimulatedScriptObject& SimulatedAutomation::addApplication(std::string name) {
  return *applications_.insert_or_assign(std::move(name), std::make_shared<SimulatedScriptObject>())
              .first->second;
}

}  // namespace simulated
