#pragma once

#include <memory>

#include "platform/Runtime.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSObject.h"

namespace platform {

/// Looks for newer versions of the application through the desktop's update service. Where there is
/// none, asking does nothing. Main thread only; never waits.
class SUUpdater final : public NSObject {
 public:
  [[nodiscard]] static std::shared_ptr<SUUpdater> initForBundle(NSBundle& /*bundle*/) {
    return std::make_shared<SUUpdater>();
  }

  /// When to look by itself, and whether to download, is the desktop's affair everywhere: both find
  /// nothing to set.
  void setAutomaticallyChecksForUpdates(bool) {}
  void setAutomaticallyDownloadsUpdates(bool) {}

  /// Tells the user only of a newer version.
  void checkForUpdatesInBackground() {
    if (auto* service = Runtime::current().desktop().updates) service->checkInBackground();
  }
  /// Tells the user in any case.
  void checkForUpdates(NSObject* /*sender*/) {
    if (auto* service = Runtime::current().desktop().updates) service->checkForUpdates();
  }
};

}  // namespace platform
