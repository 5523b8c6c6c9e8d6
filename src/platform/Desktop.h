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

/// A desktop: everything that the layer asks of the machine, as one list of small services.
///
/// It is made by `main` (or by a test fixture) before the Runtime that it is handed to and outlives
/// it, as do the services. One that a desktop lacks is a null pointer, and its header says what the
/// layer then does. All of it belongs to the main thread unless a header says otherwise.
struct Desktop {
  port::MainLoop& mainLoop;
  port::StandardOutput& standardOutput;
  port::DefaultsStore& defaults;
  port::Session& session;
  port::Windows& windows;
  port::StatusBar& statusBar;
  port::Screens& screens;
  port::SystemVersion systemVersion;
  /// The absolute path of the file that starts the program anew, free of links.
  std::string bundlePath;

  port::AudioObjects* audioObjects = nullptr;
  port::Automation* automation = nullptr;
  port::HotKeys* hotKeys = nullptr;
  /// Only where there are no hot keys.
  port::OwnKeyBindings* ownKeyBindings = nullptr;
  port::LoginItems* loginItems = nullptr;
  port::UpdateService* updates = nullptr;
  port::Spaces* spaces = nullptr;
  port::RunningApplications* runningApplications = nullptr;
  port::DesktopPictures* desktopPictures = nullptr;
  port::WindowList* windowList = nullptr;
  port::ForeignPreferences* foreignPreferences = nullptr;
  port::DistributedNotifications* distributedNotifications = nullptr;
  port::Availability* availability = nullptr;
  port::Texts* texts = nullptr;
};

}  // namespace platform
