#include "platform/updates/SUUpdater.h"

#include "platform/Runtime.h"

namespace platform {
namespace {

port::UpdateService* service() {
  return Runtime::current().desktop().updates;
}

}  // namespace

std::shared_ptr<SUUpdater> SUUpdater::initForBundle(NSBundle&) {
  return std::make_shared<SUUpdater>();
}

void SUUpdater::checkForUpdatesInBackground() {
  if (service() != nullptr) service()->checkInBackground();
}

void SUUpdater::checkForUpdates(NSObject*) {
  if (service() != nullptr) service()->checkForUpdates();
}

}  // namespace platform
