#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
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
  /// In the window manager's order: those of its own right,
  std::vector<const ClientWindow*> windows = {};
  /// the dialogs that go with them,
  std::vector<Follower> followers = {};
  /// and those that are never touched.
  std::vector<const ClientWindow*> accessories = {};

  [[nodiscard]] const ClientWindow& first() const {
    return *(windows.empty() ? accessories.front() : windows.front());
  }
  /// Some window was hidden and is so still.
  [[nodiscard]] bool isHidden() const;
  /// Some window could be hidden.
  [[nodiscard]] bool isVisible() const;
};

/// A window of this program.
[[nodiscard]] bool isOurs(const ClientWindow& window);

/// The applications but for ourselves, in the order of their oldest windows.
[[nodiscard]] std::vector<ApplicationGroup> applicationsOf(const ClientList& list);

/// The names that users know applications by, from the desktop entries. The folders of entries are
/// read when the first name is asked for, and again when one has changed since and an application
/// is met that was not before.
class ApplicationNames {
 public:
  /// None where the window says nothing of its application.
  [[nodiscard]] std::optional<std::string> nameOf(const std::string& applicationKey,
                                                  const ClientWindow& window);

 private:
  struct Entries {
    std::unordered_map<std::string, std::string> byFile;
    std::unordered_map<std::string, std::string> byClass;
  };

  void readFolders();
  void readEntry(const QString& path, const std::string& file);
  [[nodiscard]] std::optional<std::string> entryNameOf(const ClientWindow& window) const;

  Entries entries_;
  std::vector<std::pair<QString, qint64>> folders_;  // with the time of their last change
  std::unordered_map<std::string, std::optional<std::string>> known_;
};

}  // namespace linux_desktop
