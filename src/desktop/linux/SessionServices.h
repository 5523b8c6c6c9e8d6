#pragma once

#include <QObject>
#include <functional>
#include <memory>

#include "desktop/linux/windowsystem/CoverFactory.h"
#include "desktop/linux/windowsystem/KeyTranslator.h"
#include "desktop/linux/windowsystem/LegacyTray.h"
#include "desktop/linux/windowsystem/OwnWindows.h"
#include "desktop/linux/windowsystem/PanelButton.h"
#include "platform/port/HotKeys.h"
#include "platform/port/RunningApplications.h"
#include "platform/port/Screens.h"

namespace linux_desktop {

struct SessionRooms;
class WallpaperPictures;

/// What window systems and shells do each in their own way. Every service is chosen by itself, the
/// first of its candidates that answers at the start: a session may take one from its window system
/// and another from its shell. What nobody serves here is null, and one line on standard error has
/// said so. Main thread only.
class SessionServices {
  // What the services belong to.
  std::unique_ptr<SessionRooms> rooms_;

 public:
  /// Needs the application object.
  SessionServices();
  ~SessionServices();
  SessionServices(const SessionServices&) = delete;
  SessionServices& operator=(const SessionServices&) = delete;

  /// `changed` is called when what covers and hides here is turned on or off, while `listener`
  /// lives.
  void follow(QObject& listener, const std::function<void()>& changed);

  platform::port::Screens& screens;
  OwnWindows& ownWindows;
  WallpaperPictures& desktopPictures;
  LegacyTray* const legacyTray;
  PanelButton* const panelButton;
  CoverFactory* const covers;
  platform::port::WindowList* const windowList;
  platform::port::Spaces* const spaces;
  platform::port::RunningApplications* const runningApplications;
  platform::port::HotKeys* const hotKeys;
  /// Null: key presses in windows cannot be told.
  KeyTranslator* const keyTranslator;
};

}  // namespace linux_desktop
