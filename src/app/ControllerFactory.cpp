#include "app/ControllerFactory.h"

#include <functional>

#include "app/AppDelegate.h"
#include "controls/CToggleButton.h"
#include "platform/Runtime.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSCoder.h"
#include "platform/foundation/Process.h"
#include "preferences/generalVc.h"

namespace app {
namespace {

struct Instances {
  std::shared_ptr<platform::NSStoryboard> storyboard;
  std::shared_ptr<presentation::ViewController> viewController;
  std::shared_ptr<preferences::preferencesWindowController> preferencesWindowController;
  std::shared_ptr<AppDelegate> appDelegate;
};

/// `slot` of the instances, filled by `make` on first use.
template <typename T>
const std::shared_ptr<T>& shared(std::shared_ptr<T> Instances::*slot,
                                 const std::function<std::shared_ptr<T>()>& make) {
  std::shared_ptr<T>& instance = (*platform::Runtime::current().instance<Instances>()).*slot;
  if (!instance) instance = make();
  if (!instance) platform::programmingError("a single instance is of an unexpected class");
  return instance;
}

/// The scene's controller, which turns to the delegate for what it needs.
template <typename Controller>
std::shared_ptr<Controller> instantiate(std::string_view identifier) {
  auto controller = std::dynamic_pointer_cast<Controller>(
      sharedStoryboard()->instantiateControllerWithIdentifier(identifier));
  if (controller) {
    controller->setHostProvider([]() -> AppDelegate& { return *sharedAppDelegate(); });
  }
  return controller;
}

}  // namespace

const std::shared_ptr<platform::NSStoryboard>& sharedStoryboard() {
  return shared<platform::NSStoryboard>(&Instances::storyboard, [] {
    return platform::NSStoryboard::storyboardWithName("Main", nullptr);
  });
}

const std::shared_ptr<presentation::ViewController>& sharedViewController() {
  return shared<presentation::ViewController>(&Instances::viewController, [] {
    return instantiate<presentation::ViewController>("ViewController");
  });
}

const std::shared_ptr<preferences::preferencesWindowController>&
sharedPreferencesWindowController() {
  using preferences::preferencesWindowController;
  return shared<preferencesWindowController>(&Instances::preferencesWindowController, [] {
    return instantiate<preferencesWindowController>("preferencesWindowController");
  });
}

const std::shared_ptr<AppDelegate>& sharedAppDelegate() {
  return shared<AppDelegate>(&Instances::appDelegate, [] {
    return std::dynamic_pointer_cast<AppDelegate>(
        platform::NSApplication::sharedApplication().delegate());
  });
}

void registerClasses() {
  auto& registry = platform::ClassRegistry::shared();
  registry.add<controls::CToggleButton>("CToggleButton");
  registry.add<presentation::ViewController>("ViewController");
  registry.add<preferences::generalVc>("generalVc");
  registry.add<preferences::preferencesWindowController>("preferencesWindowController");
  registry.add<AppDelegate>("AppDelegate");
}

}  // namespace app
