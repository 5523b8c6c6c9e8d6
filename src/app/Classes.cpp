#include "app/Classes.h"

#include "app/AppDelegate.h"
#include "controls/CToggleButton.h"
#include "platform/foundation/ClassRegistry.h"
#include "presentation/ViewController.h"

namespace app {

void registerClasses() {
  auto& registry = platform::ClassRegistry::shared();
  registry.add<controls::CToggleButton>("CToggleButton");
  registry.add<presentation::ViewController>("ViewController");
  registry.add<AppDelegate>("AppDelegate");
}

}  // namespace app
