#include "platform/appkit/NSWorkspace.h"

#include "platform/Runtime.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {
namespace {

const Desktop& desktop() {
  return Runtime::current().desktop();
}

}  // namespace

std::vector<std::shared_ptr<NSScreen>> NSScreen::screens() {
  std::vector<std::shared_ptr<NSScreen>> screens;
  for (port::ScreenInfo& info : desktop().screens.screens()) {
    screens.push_back(std::make_shared<NSScreen>(std::move(info)));
  }
  return screens;
}

NSWorkspace::NSWorkspace() : notificationCenter_(std::make_shared<NSNotificationCenter>()) {
  if (port::Spaces* spaces = desktop().spaces) spaces->setClient(this);
  if (port::Availability* availability = desktop().availability) availability->setClient(this);
}

NSWorkspace::~NSWorkspace() {
  if (port::Availability* availability = desktop().availability) availability->setClient(nullptr);
  if (port::Spaces* spaces = desktop().spaces) spaces->setClient(nullptr);
}

NSWorkspace& NSWorkspace::sharedWorkspace() {
  return *Runtime::current().instance<NSWorkspace>();
}

void NSWorkspace::activeSpaceDidChange() {
  NSRunLoop::mainRunLoop().deliver([this] {
    notificationCenter_->postNotificationName(NSWorkspaceActiveSpaceDidChangeNotification);
  });
}

void NSWorkspace::availabilityDidChange() {
  NSRunLoop::mainRunLoop().deliver([this] {
    notificationCenter_->postNotificationName(NSWorkspaceAvailabilityDidChangeNotification);
  });
}

std::optional<std::string> NSWorkspace::obstacleTo(NSWorkspaceCapability capability) const {
  port::Availability* service = desktop().availability;
  return service == nullptr ? std::nullopt : service->obstacle(capability);
}

std::vector<std::shared_ptr<NSRunningApplication>> NSWorkspace::runningApplications() const {
  std::vector<std::shared_ptr<NSRunningApplication>> applications;
  port::RunningApplications* service = desktop().runningApplications;
  if (service == nullptr) return applications;
  for (port::ApplicationInfo& info : service->runningApplications()) {
    applications.push_back(std::make_shared<NSRunningApplication>(*service, std::move(info)));
  }
  return applications;
}

std::optional<NSURL> NSWorkspace::desktopImageURLForScreen(const NSScreen& screen) const {
  port::DesktopPictures* service = desktop().desktopPictures;
  const auto path = service == nullptr ? std::nullopt : service->path(screen.id());
  if (!path) return std::nullopt;
  return NSURL::fileURLWithPath(*path);
}

std::optional<Dictionary> NSWorkspace::desktopImageOptionsForScreen(const NSScreen& screen) const {
  port::DesktopPictures* service = desktop().desktopPictures;
  return service == nullptr ? std::nullopt : service->options(screen.id());
}

std::optional<NSError> NSWorkspace::setDesktopImageURL(const NSURL& url, const NSScreen& screen,
                                                       const Dictionary& options) {
  port::DesktopPictures* service = desktop().desktopPictures;
  if (service == nullptr) return NSError{"This desktop offers no way to set its picture."};
  auto reason = service->set(url.path(), screen.id(), options);
  if (!reason) return std::nullopt;
  return NSError{std::move(*reason)};
}

}  // namespace platform
