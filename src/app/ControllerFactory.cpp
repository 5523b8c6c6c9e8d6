#include "app/ControllerFactory.h"

#include <functional>

#include "app/AppDelegate.h"
#include "platform/Runtime.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/Process.h"

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

}  // namespace

const std::shared_ptr<platform::NSStoryboard>& sharedStoryboard() {
  return shared<platform::NSStoryboard>(&Instances::storyboard, [] {
    return platform::NSStoryboard::storyboardWithName("Main", nullptr);
  });
}

const std::shared_ptr<presentation::ViewController>& sharedViewController() {
  return shared<presentation::ViewController>(&Instances::viewController, [] {
    auto controller = std::dynamic_pointer_cast<presentation::ViewController>(
        sharedStoryboard()->instantiateControllerWithIdentifier("ViewController"));
    if (controller) {
      controller->setHostProvider(
          []() -> presentation::PanelHost& { return *sharedAppDelegate(); });
    }
    return controller;
  });
}

const std::shared_ptr<preferences::preferencesWindowController>&
sharedPreferencesWindowController() {
  using preferences::preferencesWindowController;
  return shared<preferencesWindowController>(&Instances::preferencesWindowController, [] {
    auto controller = std::dynamic_pointer_cast<preferencesWindowController>(
        sharedStoryboard()->instantiateControllerWithIdentifier("preferencesWindowController"));
    if (controller) {
      controller->setHostProvider(
          []() -> preferences::PreferencesHost& { return *sharedAppDelegate(); });
    }
    return controller;
  });
}

const std::shared_ptr<AppDelegate>& sharedAppDelegate() {
  return shared<AppDelegate>(&Instances::appDelegate, [] {
    return std::dynamic_pointer_cast<AppDelegate>(
        platform::NSApplication::sharedApplication().delegate());
  });
}

}  // namespace app
