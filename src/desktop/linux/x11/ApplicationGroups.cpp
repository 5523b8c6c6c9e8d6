#include "desktop/linux/x11/ApplicationGroups.h"

#include <QCoreApplication>
#include <QSysInfo>
#include <algorithm>

namespace linux_desktop {
namespace {

/// Dialogs of dialogs of dialogs; ends windows that are dialogs of each other.
constexpr int kDeepestDialog = 8;

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

/// The process comes late: in a sandbox the number is an inner one, and terminals share one.
std::string keyOf(const ClientWindow& window) {
  if (!window.gtkApplicationId.empty()) return "gtk " + window.gtkApplicationId;
  const std::string at = "@" + window.machine;
  if (!window.className.empty()) return "class " + lowerCase(window.className) + at;
  if (window.leader != XCB_NONE) return "leader " + std::to_string(window.leader);
  if (window.pid) return "process " + std::to_string(*window.pid) + at;
  return "window " + std::to_string(window.id);
}

/// The window that this one is a dialog of, in the end; itself when it is none.
const ClientWindow& leaderOf(const ClientWindow& window, const ClientList& list) {
  const ClientWindow* leader = &window;
  for (int i = 0; i < kDeepestDialog; ++i) {
    const ClientWindow* parent = list.find(leader->transientFor);
    if (parent == nullptr) break;
    leader = parent;
  }
  return *leader;
}

/// What hiding took away is brought back, whatever its program has made of it since.
bool isOrdinary(const ClientWindow& window) {
  return window.kind == ClientKind::Normal || window.kind == ClientKind::Dialog ||
         window.isHidden();
}

/// What is never touched counts for nothing but that the application is there.
void add(const ClientWindow& window, const ClientWindow& leader, ApplicationGroup& group) {
  if (window.kind == ClientKind::Furniture || !isOrdinary(leader)) return;
  if (&leader == &window) {
    group.windows.push_back(&window);
  } else {
    group.followers.push_back({&window, &leader});
  }
}

}  // namespace

bool isOurs(const ClientWindow& window) {
  static const std::string machine = QSysInfo::machineHostName().toStdString();
  const bool ownProcess = window.pid && *window.pid == QCoreApplication::applicationPid() &&
                          (window.machine.empty() || window.machine == machine);
  return ownProcess || lowerCase(window.className) == "calmdeck";
}

bool ApplicationGroup::isHidden() const {
  return std::ranges::any_of(windows, &ClientWindow::isHidden) ||
         std::ranges::any_of(followers,
                             [](const Follower& follower) { return follower.window->isHidden(); });
}

bool ApplicationGroup::isVisible() const {
  return !std::ranges::all_of(windows, &ClientWindow::minimised);
}

std::vector<ApplicationGroup> applicationsOf(const ClientList& list) {
  std::vector<ApplicationGroup> groups;
  for (const ClientWindow& window : list.windows) {
    const ClientWindow& leader = leaderOf(window, list);
    if (isOurs(window) || isOurs(leader)) continue;
    const std::string key = keyOf(leader);
    auto group = std::ranges::find(groups, key, &ApplicationGroup::key);
    if (group == groups.end()) group = groups.insert(group, {.key = key, .name = window.className});
    add(window, leader, *group);
  }
  return groups;
}

}  // namespace linux_desktop
