#pragma once

#include <memory>

#include "platform/appkit/NSStoryboard.h"
#include "preferences/preferencesWindowController.h"
#include "presentation/ViewController.h"

namespace app {

class AppDelegate;

/// The application's single instances, each made on first use and kept until the Runtime goes. This
/// room alone knows them all, and wires what the rooms below leave open. Main thread only. A
/// storyboard or a delegate that is not what it should be is a programming error.
[[nodiscard]] const std::shared_ptr<platform::NSStoryboard>& sharedStoryboard();
[[nodiscard]] const std::shared_ptr<presentation::ViewController>& sharedViewController();
[[nodiscard]] const std::shared_ptr<preferences::preferencesWindowController>&
sharedPreferencesWindowController();
[[nodiscard]] const std::shared_ptr<AppDelegate>& sharedAppDelegate();

/// Registers the application's classes with the current Runtime, under the names that the
/// storyboard uses. Once for each Runtime, before anything else of the application.
void registerClasses();

}  // namespace app
