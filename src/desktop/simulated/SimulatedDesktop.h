#pragma once

#include <map>
#include <string>
#include <vector>

#include "desktop/simulated/CallLog.h"
#include "desktop/simulated/SimulatedApplications.h"
#include "desktop/simulated/SimulatedAudioObjects.h"
#include "desktop/simulated/SimulatedAutomation.h"
#include "desktop/simulated/SimulatedHotKeys.h"
#include "desktop/simulated/SimulatedMainLoop.h"
#include "desktop/simulated/SimulatedScreens.h"
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
  [[nodiscard]] std::optional<platform::Value> object(std::string_view key) const override {
    const auto found = values.find(key);
    if (found == values.end()) return std::nullopt;
    return found->second;
  }
  void set(std::string_view key, platform::Value value) override {
    log_.add("defaults.set " + std::string(key));
    values.insert_or_assign(std::string(key), std::move(value));
  }
  void remove(std::string_view key) override {
    log_.add("defaults.remove " + std::string(key));
    if (const auto found = values.find(key); found != values.end()) values.erase(found);
  }

  std::map<std::string, platform::Value, std::less<>> values;

 private:
  CallLog& log_;
};

class SimulatedSession final : public platform::port::Session {
 public:
  void setClient(platform::port::SessionClient* client) override { client_ = client; }
  void modeDidChange(bool isOn) override { modesSeen.push_back(isOn); }
  /// What other programs were told of the mode, in order.
  std::vector<bool> modesSeen;
  /// The user starts the program a second time.
  void reopen() { client_->applicationShouldReopen(); }
  /// A key of the user's own, or a script, asks for an action. False: there is none.
  bool perform(std::string_view action) { return client_->applicationShouldPerform(action); }

 private:
  platform::port::SessionClient* client_ = nullptr;
};

/// Not the desktop's until a test says so.
class SimulatedOwnKeyBindings final : public platform::port::OwnKeyBindings {
 public:
  /// "bind 40 4096 ACTION".
  [[nodiscard]] std::string bindingOf(std::uint32_t keyCode, std::uint32_t modifiers,
                                      std::string_view action) const override {
    return "bind " + std::to_string(keyCode) + " " + std::to_string(modifiers) + " " +
           std::string(action);
  }
};

/// Everything can be done until a test says otherwise.
class SimulatedAvailability final : public platform::port::Availability {
 public:
  using Capability = platform::port::Capability;

  void setClient(platform::port::AvailabilityClient* client) override { client_ = client; }
  [[nodiscard]] std::optional<std::string> obstacle(Capability capability) override {
    const auto found = obstacles.find(capability);
    return found == obstacles.end() ? std::nullopt : std::optional(found->second);
  }
  [[nodiscard]] bool hasClient() const { return client_ != nullptr; }

  std::map<Capability, std::string> obstacles;
  /// Tells the program that they were changed.
  void changed() {
    if (client_ != nullptr) client_->availabilityDidChange();
  }

 private:
  platform::port::AvailabilityClient* client_ = nullptr;
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
class SimulatedDesktop final {
 public:
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
  SimulatedOwnKeyBindings ownKeyBindings;
  SimulatedUpdates updateService{log};
  SimulatedScreens displays;
  SimulatedSpaces workspaces;
  SimulatedApplications applications{log};
  SimulatedDesktopPictures pictures{log};
  SimulatedWindowList windowsOnScreen{log};
  SimulatedForeignPreferences preferences{log};
  SimulatedDistributedNotifications messages{log};
  SimulatedAvailability availability;
  /// What the program is given of it. Levers: which optional services there are, the version and
  /// the path.
  platform::Desktop desktop{.mainLoop = loop,
                            .standardOutput = output,
                            .defaults = settings,
                            .session = userSession,
                            .windows = screen,
                            .statusBar = tray,
                            .screens = displays,
                            .systemVersion = {12, 0, 0},
                            .bundlePath = "/programs/calmdeck",
                            .audioObjects = &audio,
                            .automation = &scripts,
                            .hotKeys = &keys,
                            .loginItems = &startedAtLogin,
                            .updates = &updateService,
                            .spaces = &workspaces,
                            .runningApplications = &applications,
                            .desktopPictures = &pictures,
                            .windowList = &windowsOnScreen,
                            .foreignPreferences = &preferences,
                            .distributedNotifications = &messages,
                            .availability = &availability};

 private:
  std::size_t observers_ = 0;
};

}  // namespace simulated
