#pragma once

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSObject.h"

namespace platform {

/// Looks for newer versions of the application through the desktop's update service. Where there is
/// none, asking does nothing. Main thread only; never waits.
class SUUpdater final : public NSObject {
 public:
  [[nodiscard]] static std::shared_ptr<SUUpdater> initForBundle(NSBundle& bundle);

  void setAutomaticallyChecksForUpdates(bool checks) { automaticallyChecks_ = checks; }
  /// Downloading is the desktop's affair everywhere; kept for the reader of the settings.
  void setAutomaticallyDownloadsUpdates(bool downloads) { automaticallyDownloads_ = downloads; }
  [[nodiscard]] bool automaticallyChecksForUpdates() const { return automaticallyChecks_; }
  [[nodiscard]] bool automaticallyDownloadsUpdates() const { return automaticallyDownloads_; }

  /// Tells the user only of a newer version.
  void checkForUpdatesInBackground();
  /// Tells the user in any case.
  void checkForUpdates(NSObject* sender);

 private:
  bool automaticallyChecks_ = false;
  bool automaticallyDownloads_ = false;
};

}  // namespace platform
