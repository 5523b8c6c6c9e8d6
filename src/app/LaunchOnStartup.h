#pragma once

#include <optional>
#include <utility>

#include "platform/launchservices/LSSharedFileList.h"

namespace app {

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
