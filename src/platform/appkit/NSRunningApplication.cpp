#include "platform/appkit/NSRunningApplication.h"

#include "platform/Runtime.h"

namespace platform {
namespace {

port::RunningApplications* service() {
  return Runtime::current().desktop().runningApplications;
}

}  // namespace

bool NSRunningApplication::isHidden() const {
  return service() != nullptr && service()->isHidden(info_.id);
}

bool NSRunningApplication::hide() const {
  return service() != nullptr && service()->hide(info_.id);
}

bool NSRunningApplication::unhide() const {
  return service() != nullptr && service()->unhide(info_.id);
}

}  // namespace platform
