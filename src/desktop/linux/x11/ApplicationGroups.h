#pragma once

#include <string>
#include <vector>

#include "desktop/linux/x11/ClientWindows.h"
#include "platform/port/RunningApplications.h"

namespace linux_desktop {

/// An application as its windows tell of it. Points into the list that it was made of.
struct ApplicationGroup {
  struct Follower {
    const ClientWindow* window;
    const ClientWindow* leader;
  };

  /// The same for the same application in every list while it runs.
  std::string key;
  /// Given by who keeps them apart from those that ran before.
  platform::port::ApplicationId id = 0;
  /// What its first window calls it; empty where that says nothing.
  std::string name;
  /// In the window manager's order: those of its own right, and the dialogs that go with them.
  std::vector<const ClientWindow*> windows = {};
  std::vector<Follower> followers = {};

  /// Some window was hidden and is so still.
  [[nodiscard]] bool isHidden() const;
  /// Some window could be hidden.
  [[nodiscard]] bool isVisible() const;
};

/// A window of this program.
[[nodiscard]] bool isOurs(const ClientWindow& window);

/// The applications but for ourselves, in the order of their oldest windows.
[[nodiscard]] std::vector<ApplicationGroup> applicationsOf(const ClientList& list);

}  // namespace linux_desktop
