#pragma once

#include <optional>

#include "platform/foundation/NSObject.h"
#include "platform/launchservices/LSSharedFileList.h"

namespace app {

/// Takes the application out of the login items. Main thread only.
class addLoginitem final : public platform::NSObject {
 public:
  /// Removes the application's last entry and returns it; none when there was none.
  std::optional<platform::LSSharedFileListItemRef> itemRefInLoginItems();

  [[nodiscard]] const platform::ClassDescription& classDescription() const override;
};

/// Whether the desktop starts the application at login: the application's entry in the user's login
/// items, which holds the bundle's path. Main thread only; may touch the file system. A list that
/// cannot be had is left alone, and nobody is told.
class LaunchOnStartup {
 public:
  LaunchOnStartup() = delete;

  struct References {
    /// The application's first entry.
    std::optional<platform::LSSharedFileListItemRef> existing;
    /// What a new entry goes after: the list's last one, or kLSSharedFileListItemBeforeFirst.
    platform::LSSharedFileListItemRef last;
  };

  /// Adds the entry as the last where there is none, or removes one and prints which.
  static void setLaunchAtStartup(bool launches);
  /// None when the list cannot be had.
  [[nodiscard]] static std::optional<References> itemReferencesInLoginItems();
};

}  // namespace app
