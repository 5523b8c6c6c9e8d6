#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/port/Automation.h"

namespace platform::applescript {

/// What scripts did to a fake desktop, in order: "click checkbox Quiet", "key 53", "notify Muted".
using Deeds = std::vector<std::string>;

/// An object with named children and properties. A click flips `value` where there is one.
class FakeObject final : public port::ScriptObject {
 public:
  using Made = std::shared_ptr<FakeObject>;

  FakeObject(Deeds& deeds, std::string className, std::string name)
      : deeds_(deeds), className_(std::move(className)), name_(std::move(name)) {}

  Made add(std::string className, std::string name) {
    return children_.emplace_back(
        std::make_shared<FakeObject>(deeds_, std::move(className), std::move(name)));
  }

  port::ScriptResult<std::shared_ptr<port::ScriptObject>> element(
      std::string_view className, const port::ElementSpecifier& which) override {
    std::vector<Made> candidates;
    std::copy_if(children_.begin(), children_.end(), std::back_inserter(candidates),
                 [&](const Made& child) { return child->className_ == className; });
    if (const auto* name = std::get_if<std::string>(&which)) return named(candidates, *name);
    const auto* index = std::get_if<std::int64_t>(&which);
    return indexed(candidates, index ? *index : 1, index != nullptr);
  }

  port::ScriptResult<Value> property(std::string_view name) override {
    const auto found = properties.find(name);
    if (found != properties.end()) return found->second;
    return port::ScriptError{-1728, "Can’t get " + std::string(name) + "."};
  }

  std::optional<port::ScriptError> setProperty(std::string_view name, const Value& value) override {
    const auto found = properties.find(name);
    if (found == properties.end()) return port::ScriptError{-10006, "Can’t set it."};
    found->second = value;
    deeds_.push_back("set " + std::string(name) + " of " + name_);
    return std::nullopt;
  }

  std::optional<port::ScriptError> click() override {
    if (clickError) return clickError;
    deeds_.push_back("click " + className_ + " " + name_);
    const auto value = properties.find("value");
    if (value != properties.end()) value->second = value->second == Value(1) ? 0 : 1;
    return std::nullopt;
  }

  Dictionary properties;
  std::optional<port::ScriptError> clickError;

 private:
  using Result = port::ScriptResult<std::shared_ptr<port::ScriptObject>>;

  static Result named(const std::vector<Made>& candidates, const std::string& name) {
    for (const Made& candidate : candidates) {
      if (candidate->name_ == name) return candidate;
    }
    return port::ScriptError{-1728, "Can’t get the one named \"" + name + "\"."};
  }

  static Result indexed(const std::vector<Made>& candidates, std::int64_t index, bool asked) {
    if (index >= 1 && index <= std::ssize(candidates)) {
      return candidates[static_cast<std::size_t>(index - 1)];
    }
    if (asked) return port::ScriptError{-1719, "Can’t get it. Invalid index."};
    return port::ScriptError{-1728, "Can’t get it."};
  }

  Deeds& deeds_;
  std::string className_;
  std::string name_;
  std::vector<Made> children_;
};

/// A desktop on which scripts find one application, "System Events", with a process
/// "ControlCenter" and its menu bar, window and checkbox.
class FakeAutomation final : public port::Automation {
 public:
  FakeAutomation() {
    const auto process = root->add("application process", "ControlCenter");
    process->properties.insert_or_assign("name", "ControlCenter");
    process->add("menu bar", "main")->add("menu bar item", "Focus");
    window = process->add("window", "Focus");
    window->properties.insert_or_assign("input volume", 12);
    checkbox = window->add("checkbox", "Do Not Disturb");
    checkbox->properties.insert_or_assign("value", 0);
    checkbox->properties.insert_or_assign("role description", "a box");
  }

  port::ScriptResult<std::shared_ptr<port::ScriptObject>> application(
      std::string_view name) override {
    if (name == "System Events") return root;
    if (name == "Locked") {
      return port::ScriptError{-1743, "Not authorized to send Apple events to Locked."};
    }
    return port::ScriptError{-1728, "Can’t get application \"" + std::string(name) + "\"."};
  }

  std::optional<port::ScriptError> keyCode(std::int64_t code) override {
    return done("key " + std::to_string(code));
  }

  port::ScriptResult<Dictionary> volumeSettings() override {
    if (failure) return *failure;
    return settings;
  }

  std::optional<port::ScriptError> setInputVolume(int level) override {
    settings.insert_or_assign("input volume", level);
    return done("input volume " + std::to_string(level));
  }

  std::optional<port::ScriptError> displayNotification(std::string_view text) override {
    return done("notify " + std::string(text));
  }

  Deeds deeds;
  Dictionary settings{{"input volume", 35}, {"output volume", 60}, {"output muted", false}};
  /// What every command then ends in.
  std::optional<port::ScriptError> failure;
  std::shared_ptr<FakeObject> root = std::make_shared<FakeObject>(deeds, "application", "root");
  std::shared_ptr<FakeObject> window;
  std::shared_ptr<FakeObject> checkbox;

 private:
  std::optional<port::ScriptError> done(std::string deed) {
    if (failure) return failure;
    deeds.push_back(std::move(deed));
    return std::nullopt;
  }
};

}  // namespace platform::applescript
