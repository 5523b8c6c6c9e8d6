#pragma once

#include <string>
#include <string_view>

#include "desktop/simulated/SimulatedAutomation.h"
#include "platform/applescript/RunScript.h"

namespace platform::applescript {

/// A desktop on which scripts find one application, "System Events", with a process
/// "ControlCenter" and its menu bar, window and checkbox. Clicks are logged with the commands.
struct ScriptDesk {
  ScriptDesk() {
    auto& process =
        automation.addApplication("System Events").add("application process", "ControlCenter");
    process.properties.emplace("name", "ControlCenter");
    process.add("menu bar", "main").add("menu bar item", "Focus").onClick = logged("click menu");
    window = &process.add("window", "Focus");
    window->properties.emplace("input volume", 12);
    checkbox = &window->add("checkbox", "Do Not Disturb");
    checkbox->properties = {{"value", 0}, {"role description", "a box"}};
    checkbox->onClick = logged("click checkbox");
    automation.volume = {{"input volume", 35}, {"output volume", 60}, {"output muted", false}};
  }
  [[nodiscard]] ScriptOutcome run(std::string_view source) {
    return runScript(source, &automation);
  }

  simulated::CallLog log;
  simulated::SimulatedAutomation automation{log};
  simulated::SimulatedScriptObject* window = nullptr;
  simulated::SimulatedScriptObject* checkbox = nullptr;

 private:
  std::function<void(simulated::SimulatedScriptObject&)> logged(const char* deed) {
    return [this, deed](simulated::SimulatedScriptObject&) { log.add(deed); };
  }
};

}  // namespace platform::applescript
