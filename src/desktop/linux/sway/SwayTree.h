#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <vector>

namespace linux_desktop {

/// Sway's number for a window or a group of windows.
using SwayId = std::int64_t;

struct SwayWindow {
  SwayId id = 0;
  /// This process's.
  bool isOurs = false;
  bool isSticky = false;
  QStringList marks = {};
};

struct SwayWorkspace {
  SwayId id = 0;
  QString name = {};
  QString output = {};
  /// The one that its output shows.
  bool isVisible = false;
  /// What stands in it side by side, each with all that is in it, and what floats over it.
  std::vector<SwayId> groups = {};
  std::vector<SwayWindow> windows = {};
};

/// What sway, or i3, shows, at one moment.
struct SwayTree {
  std::vector<SwayWorkspace> workspaces;
  /// The output that the user works on; empty without any.
  QString output;
  /// The window that has the keyboard, or would have it if no panel had it.
  SwayId focused = 0;
};

/// Of the answer to GET_TREE, in a process of the number `ourPid`.
[[nodiscard]] SwayTree swayTree(const QJsonObject& root, std::int64_t ourPid);

}  // namespace linux_desktop
