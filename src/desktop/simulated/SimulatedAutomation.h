#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "desktop/simulated/CallLog.h"
#include "platform/port/Automation.h"

namespace simulated {

/// A scriptable object as a bag of properties and elements.
class SimulatedScriptObject final : public platform::port::ScriptObject,
                                    public std::enable_shared_from_this<SimulatedScriptObject> {
 public:
  template <typename T>
  using Result = platform::port::ScriptResult<T>;

  [[nodiscard]] Result<std::shared_ptr<ScriptObject>> element(
      std::string_view className, const platform::port::ElementSpecifier& which) override;
  [[nodiscard]] Result<platform::Value> property(std::string_view name) override;
  [[nodiscard]] std::optional<platform::port::ScriptError> click() override;

  // --- Levers ---
  /// A new element of that class, the last one; `name` may be empty.
  SimulatedScriptObject& add(std::string className, std::string name);
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
      std::string_view name) override;
  [[nodiscard]] std::optional<Error> keyCode(std::int64_t code) override;
  [[nodiscard]] Result<platform::Dictionary> volumeSettings() override;
  [[nodiscard]] std::optional<Error> setInputVolume(int level) override;
  [[nodiscard]] std::optional<Error> displayNotification(std::string_view text) override;

  // --- Levers ---
  SimulatedScriptObject& addApplication(std::string name);
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
