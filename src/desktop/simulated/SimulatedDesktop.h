#pragma once

#include <map>
#include <string>
#include <vector>

#include "desktop/simulated/CallLog.h"
#include "desktop/simulated/SimulatedApplications.h"
#include "desktop/simulated/SimulatedAudioObjects.h"
#include "desktop/simulated/SimulatedAutomation.h"
#include "desktop/simulated/SimulatedHotKeys.h"
#include "desktop/simulated/SimulatedLoginItems.h"
#include "desktop/simulated/SimulatedMainLoop.h"
#include "desktop/simulated/SimulatedScreens.h"
#include "desktop/simulated/SimulatedStatusBar.h"
#include "desktop/simulated/SimulatedWindows.h"
#include "platform/Desktop.h"

namespace simulated {

class SimulatedOutput final : public platform::port::StandardOutput {
 public:
  explicit SimulatedOutput(CallLog& log) : log_(log) {}
  void print(std::string_view text) override {
    lines.emplace_back(text);
    log_.add(std::string(CallLog::kPrint) + lines.back());
  }
  std::vector<std::string> lines;

 private:
  CallLog& log_;
};

class SimulatedDefaults final : public platform::port::DefaultsStore {
 public:
  explicit SimulatedDefaults(CallLog& log) : log_(log) {}
  [[nodiscard]] std::optional<platform::Value> object(std::string_view key) const override;
  void set(std::string_view key, platform::Value value) override;
  void remove(std::string_view key) override;

  std::map<std::string, platform::Value, std::less<>> values;

 private:
  CallLog& log_;
};

class SimulatedSession final : public platform::port::Session {
 public:
  void setClient(platform::port::SessionClient* client) override { client_ = client; }
  /// The user starts the program a second time.
  void reopen() { client_->applicationShouldReopen(); }

 private:
  platform::port::SessionClient* client_ = nullptr;
};

class SimulatedUpdates final : public platform::port::UpdateService {
 public:
  explicit SimulatedUpdates(CallLog& log) : log_(log) {}
  void checkInBackground() override { log_.add("updates.checkInBackground"); }
  void checkForUpdates() override { log_.add("updates.checkForUpdates"); }

 private:
  CallLog& log_;
};

/// A desktop in memory: state, levers, one log of calls and a clock that is moved by hand. It has
/// no behaviour of its own.
class SimulatedDesktop final : public platform::Desktop {
 public:
  SimulatedMainLoop& mainLoop() override { return loop; }
  SimulatedOutput& standardOutput() override { return output; }
  SimulatedDefaults& defaults() override { return settings; }
  SimulatedSession& session() override { return userSession; }
  SimulatedWindows& windows() override { return screen; }
  SimulatedStatusBar& statusBar() override { return tray; }
  SimulatedScreens& screens() override { return displays; }
  [[nodiscard]] platform::port::SystemVersion systemVersion() const override { return version; }
  [[nodiscard]] std::string bundlePath() const override { return programPath; }
  SimulatedLoginItems* loginItems() override { return hasLoginItems ? &startedAtLogin : nullptr; }
  SimulatedSpaces* spaces() override { return hasSpaces ? &workspaces : nullptr; }
  SimulatedApplications* runningApplications() override {
    return hasApplications ? &applications : nullptr;
  }
  SimulatedDesktopPictures* desktopPictures() override { return hasPictures ? &pictures : nullptr; }
  SimulatedWindowList* windowList() override { return hasWindowList ? &windowsOnScreen : nullptr; }
  SimulatedForeignPreferences* foreignPreferences() override {
    return hasPreferences ? &preferences : nullptr;
  }
  SimulatedDistributedNotifications* distributedNotifications() override {
    return hasPreferences ? &messages : nullptr;
  }
  SimulatedAudioObjects* audioObjects() override { return hasAudio ? &audio : nullptr; }
  SimulatedAutomation* automation() override { return hasAutomation ? &scripts : nullptr; }
  SimulatedHotKeys* hotKeys() override { return hasHotKeys ? &keys : nullptr; }
  SimulatedUpdates* updates() override { return hasUpdates ? &updateService : nullptr; }

  /// What the program has not given back, a line each. Empty once its Runtime is gone, or it leaks.
  [[nodiscard]] std::vector<std::string> leftBehind() const;
  /// To be called before the Runtime goes, which takes the observers along: whoever follows spaces
  /// or screens then counts as left behind, but for the covers that are up.
  void countObservers();

  CallLog log;
  SimulatedMainLoop loop;
  SimulatedOutput output{log};
  SimulatedDefaults settings{log};
  SimulatedSession userSession;
  SimulatedWindows screen{log, loop};
  SimulatedStatusBar tray{log, screen};
  SimulatedAudioObjects audio{log};
  SimulatedAutomation scripts{log};
  SimulatedLoginItems startedAtLogin{log};
  SimulatedHotKeys keys{log};
  SimulatedUpdates updateService{log};
  SimulatedScreens displays;
  SimulatedSpaces workspaces;
  SimulatedApplications applications{log};
  SimulatedDesktopPictures pictures{log};
  SimulatedWindowList windowsOnScreen{log};
  SimulatedForeignPreferences preferences{log};
  SimulatedDistributedNotifications messages{log};
  platform::port::SystemVersion version{12, 0, 0};
  std::string programPath = "/programs/calmdeck";

  // Levers: which optional services there are.
  bool hasAudio = true;
  bool hasAutomation = true;
  bool hasHotKeys = true;
  bool hasUpdates = true;
  bool hasLoginItems = true;
  bool hasApplications = true;
  bool hasPictures = true;
  bool hasWindowList = true;
  bool hasSpaces = true;
  /// Preferences of other programs, and messages to them.
  bool hasPreferences = true;

 private:
  std::size_t observers_ = 0;
};

}  // namespace simulated
