#pragma once

#include <string>

#include "platform/port/AudioObjects.h"
#include "platform/port/Automation.h"
#include "platform/port/HotKeys.h"
#include "platform/port/Program.h"
#include "platform/port/RunningApplications.h"
#include "platform/port/Screens.h"
#include "platform/port/Windows.h"

namespace platform {

/// A desktop: everything that the layer asks of the machine, behind one owner of small services.
///
/// A desktop is made by `main` (or by a test fixture) before the Runtime that it is handed to and
/// outlives it. It owns its services; the references stay good for as long as it lives. A service
/// that a desktop lacks is a null pointer, and its header says what the layer then does. All of it
/// belongs to the main thread unless a header says otherwise.
class Desktop {
 public:
  virtual ~Desktop() = default;

  virtual port::MainLoop& mainLoop() = 0;
  virtual port::StandardOutput& standardOutput() = 0;
  virtual port::DefaultsStore& defaults() = 0;
  virtual port::Session& session() = 0;
  virtual port::Windows& windows() = 0;
  virtual port::StatusBar& statusBar() = 0;
  virtual port::Screens& screens() = 0;
  [[nodiscard]] virtual port::SystemVersion systemVersion() const = 0;
  /// The absolute path of the file that starts the program anew, free of links.
  [[nodiscard]] virtual std::string bundlePath() const = 0;

  virtual port::AudioObjects* audioObjects() { return nullptr; }
  virtual port::Automation* automation() { return nullptr; }
  virtual port::HotKeys* hotKeys() { return nullptr; }
  virtual port::LoginItems* loginItems() { return nullptr; }
  virtual port::UpdateService* updates() { return nullptr; }
  virtual port::Spaces* spaces() { return nullptr; }
  virtual port::RunningApplications* runningApplications() { return nullptr; }
  virtual port::DesktopPictures* desktopPictures() { return nullptr; }
  virtual port::WindowList* windowList() { return nullptr; }
  virtual port::ForeignPreferences* foreignPreferences() { return nullptr; }
  virtual port::DistributedNotifications* distributedNotifications() { return nullptr; }
};

}  // namespace platform
