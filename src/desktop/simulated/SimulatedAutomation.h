#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/simulated/CallLog.h"
#include "platform/port/Automation.h"

namespace simulated {

/// A scriptable object as a bag of properties and elements.
class SimulatedScriptObject final : public platform::port::ScriptObject,
                                    public std::enable_shared_from_this<SimulatedScriptObject> {
 public:
  using Error = platform::port::ScriptError;
  template <typename T>
  using Result = platform::port::ScriptResult<T>;

  [[nodiscard]] Result<std::shared_ptr<ScriptObject>> element(
      std::string_view className, const platform::port::ElementSpecifier& which) override {
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
    return Error{name != nullptr ? -1728 : -1719, "Can’t get " + std::string(className) + "."};
  }
  [[nodiscard]] Result<platform::Value> property(std::string_view name) override {
    const auto found = properties.find(name);
    if (found == properties.end()) return Error{-1728, "Can’t get " + std::string(name) + "."};
    return found->second;
  }
  [[nodiscard]] std::optional<Error> click() override {
    ++clicks;
    if (onClick) onClick(*this);
    return std::nullopt;
  }

  // --- Levers ---
  /// A new element of that class, the last one; `name` may be empty.
  SimulatedScriptObject& add(std::string className, std::string name) {
    elements_.push_back(
        {std::move(className), std::move(name), std::make_shared<SimulatedScriptObject>()});
    return *elements_.back().object;
  }
  std::map<std::string, platform::Value, std::less<>> properties;
  std::function<void(SimulatedScriptObject& self)> onClick;
  int clicks = 0;

 private:
  struct Element {
    std::string className;
    std::string name;
    std::shared_ptr<SimulatedScriptObject> object;
  };
  std::vector<Element> elements_;
};

/// Applications that scripts can reach, and the sound and message commands as values.
class SimulatedAutomation final : public platform::port::Automation {
 public:
  using Error = platform::port::ScriptError;
  template <typename T>
  using Result = platform::port::ScriptResult<T>;

  explicit SimulatedAutomation(CallLog& log) : log_(log) {}

  [[nodiscard]] Result<std::shared_ptr<platform::port::ScriptObject>> application(
      std::string_view name) override {
    if (failure) return *failure;
    const auto found = applications_.find(name);
    if (found == applications_.end()) {
      return Error{-1728, "Can’t get application \"" + std::string(name) + "\"."};
    }
    return found->second;
  }
  [[nodiscard]] std::optional<Error> keyCode(std::int64_t code) override {
    log_.add("automation.keyCode " + std::to_string(code));
    return failure;
  }
  [[nodiscard]] Result<platform::Dictionary> volumeSettings() override {
    if (failure) return *failure;
    return volume;
  }
  [[nodiscard]] std::optional<Error> setInputVolume(int level) override {
    log_.add("automation.setInputVolume " + std::to_string(level));
    if (failure) return failure;
    if (!setInputVolumeFailure) volume.insert_or_assign("input volume", level);
    return setInputVolumeFailure;
  }
  [[nodiscard]] std::optional<Error> displayNotification(std::string_view text) override {
    log_.add("automation.displayNotification " + std::string(text));
    return failure;
  }

  // --- Levers ---
  SimulatedScriptObject& addApplication(std::string name) {
    return *applications_
                .insert_or_assign(std::move(name), std::make_shared<SimulatedScriptObject>())
                .first->second;
  }
  platform::Dictionary volume{{"input volume", 100}};
  /// While set, every operation fails with it.
  std::optional<Error> failure;
  /// While set, the input volume cannot be set.
  std::optional<Error> setInputVolumeFailure;

 private:
  CallLog& log_;
  std::map<std::string, std::shared_ptr<SimulatedScriptObject>, std::less<>> applications_;
};

}  // namespace simulated
