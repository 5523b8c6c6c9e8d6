#include <memory>
#include <vector>

#include "platform/appkit/NSWorkspace.h"
#include "platform/foundation/NSRunLoop.h"
#include "platform/foundation/Utf8.h"
#include "presentation/ViewController.h"

namespace presentation {

using platform::DispatchQueue;
using platform::NSRunningApplication;

namespace {

using Applications = std::vector<std::shared_ptr<NSRunningApplication>>;

Applications regularApplications() {
  Applications applications = platform::NSWorkspace::sharedWorkspace().runningApplications();
  std::erase_if(applications, [](const auto& application) {
    return application->activationPolicy() != platform::NSApplicationActivationPolicy::Regular;
  });
  return applications;
}

/// By name only, whatever the letter case.
bool isFinder(const NSRunningApplication& application) {
  const auto& name = application.localizedName();
  return name && platform::lowercaseString(*name) == "finder";
}

void hide(const Applications& applications) {
  for (const auto& application : applications) {
    if (!isFinder(*application)) application->hide();
  }
}

}  // namespace

void ViewController::hideAllApps() {
  const Applications applications = regularApplications();
  hide(applications);
  // Once more after the current event, for what did not take the first request.
  DispatchQueue::globalQueue().sync([&applications] {
    DispatchQueue::mainQueue().async([applications] { hide(applications); });
  });
}

void ViewController::showAllHiddenApps() {
  for (const auto& application : regularApplications()) {
    if (application->isHidden()) application->unhide();
  }
}

}  // namespace presentation
