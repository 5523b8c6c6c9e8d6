#include "app/Classes.h"

#include "app/AppDelegate.h"
#include "controls/CToggleButton.h"
#include "platform/foundation/NSCoder.h"
#include "preferences/generalVc.h"
#include "preferences/preferencesWindowController.h"
#include "presentation/ViewController.h"

namespace app {

void registerClasses() {
  auto& registry = platform::ClassRegistry::shared();
  registry.add<controls::CToggleButton>("CToggleButton");
  registry.add<presentation::ViewController>("ViewController");
  registry.add<preferences::generalVc>("generalVc");
  registry.add<preferences::preferencesWindowController>("preferencesWindowController");
  registry.add<AppDelegate>("AppDelegate");
}

}  // namespace app
