#include "platform/appkit/NSApplication.h"

#include <array>
#include <utility>

#include "platform/Runtime.h"
#include "platform/appkit/NSStoryboard.h"
#include "platform/appkit/NSWorkspace.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {
namespace {

const Desktop& desktop() {
  return Runtime::current().desktop();
}

}  // namespace

NSApplication::NSApplication() {
  desktop().session.setClient(this);
  desktop().screens.setClient(this);
}
NSApplication::~NSApplication() {
  desktop().screens.setClient(nullptr);
  desktop().session.setClient(nullptr);
}

NSApplication& NSApplication::sharedApplication() {
  return *Runtime::current().instance<NSApplication>();
}

void NSApplication::setDelegate(std::shared_ptr<NSObject> delegate) {
  if (dynamic_cast<NSApplicationDelegate*>(delegate.get()) == nullptr) {
    programmingError("the application's delegate is no NSApplicationDelegate");
  }
  delegate_ = std::move(delegate);
}

NSApplicationDelegate& NSApplication::applicationDelegate() {
  if (!delegate_) programmingError("the application has no delegate");
  return dynamic_cast<NSApplicationDelegate&>(*delegate_);
}

void NSApplication::run() {
  applicationDelegate().applicationWillFinishLaunching();
  applicationDelegate().applicationDidFinishLaunching();
  desktop().mainLoop.run();
}

void NSApplication::terminate(NSObject*) {
  applicationDelegate().applicationWillTerminate();
  desktop().mainLoop.terminate();
}

void NSApplication::sendEvent(const NSEvent& event, const std::function<void()>& handler) {
  NSRunLoop::mainRunLoop().deliver([this, event, handler] {
    const auto outer = std::exchange(currentEvent_, event);
    handler();
    currentEvent_ = outer;
  });
}

void NSApplication::sendAction(std::string_view action, NSObject* target, NSObject* sender) {
  NSObject* receiver = target;
  for (NSObject* next : {static_cast<NSObject*>(delegate_.get()), static_cast<NSObject*>(this)}) {
    if (receiver == nullptr && next != nullptr && next->respondsToSelector(action)) receiver = next;
  }
  if (receiver != nullptr) receiver->performSelector(action, sender);
}

void NSApplication::activateIgnoringOtherApps(bool ignoreOtherApps) {
  if (ignoreOtherApps) desktop().windows.activateApplication();
}

void NSApplication::showMode(bool isOn) {
  desktop().session.modeDidChange(isOn);
}

void NSApplication::applicationShouldReopen() {
  NSRunLoop::mainRunLoop().deliver(
      [this] { applicationDelegate().applicationShouldHandleReopen(); });
}

bool NSApplication::applicationShouldPerform(std::string_view action) {
  std::function<void()> perform = applicationDelegate().applicationAction(action);
  if (!perform) return false;
  NSRunLoop::mainRunLoop().deliver(std::move(perform));
  return true;
}

void NSApplication::screenParametersDidChange() {
  NSRunLoop::mainRunLoop().deliver([] {
    NSNotificationCenter::defaultCenter().postNotificationName(
        NSApplicationDidChangeScreenParametersNotification);
  });
}

const ClassDescription& NSApplication::classDescription() const {
  static constexpr std::array messages{message<&NSApplication::terminate>("terminate:")};
  static constexpr ClassDescription description{.className = "NSApplication", .messages = messages};
  return description;
}

void NSApplicationMain() {
  NSApplication& application = NSApplication::sharedApplication();
  application.setDelegate(
      NSStoryboard::storyboardWithName("Main", nullptr)->instantiateApplicationDelegate());
  application.run();
}

}  // namespace platform
