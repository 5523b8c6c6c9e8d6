#include "desktop/linux/x11/ApplicationGroups.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>
#include <QSysInfo>
#include <algorithm>
#include <unordered_map>

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

void add(const ClientWindow& window, const ClientWindow& leader, ApplicationGroup& group) {
  if (window.kind == ClientKind::Furniture || !isOrdinary(leader)) {
    group.accessories.push_back(&window);
  } else if (&leader != &window) {
    group.followers.push_back({&window, &leader});
  } else {
    group.windows.push_back(&window);
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
    if (group == groups.end()) group = groups.insert(group, {.key = key});
    add(window, leader, *group);
  }
  return groups;
}

namespace {

constexpr QLatin1String kSuffix(".desktop");
constexpr qint64 kLargestEntry = 256LL * 1024;

qint64 changeOf(const QString& folder) {
  return QFileInfo(folder).lastModified().toMSecsSinceEpoch();
}

/// What is read of an entry, and which of it is the name in the user's language: the first that is
/// there.
QByteArrayList keysRead() {
  const QByteArray locale = QLocale::system().name().toUtf8();
  const QByteArray language = locale.left(locale.indexOf('_'));
  return {"StartupWMClass", "Name[" + locale + "]", "Name[" + language + "]", "Name"};
}

std::string lastPart(const std::string& dotted) {
  return dotted.substr(dotted.rfind('.') + 1);
}

}  // namespace

std::optional<std::string> ApplicationNames::nameOf(const std::string& applicationKey,
                                                    const ClientWindow& window) {
  if (const auto known = known_.find(applicationKey); known != known_.end()) return known->second;
  const bool current = !folders_.empty() && std::ranges::all_of(folders_, [](const auto& folder) {
    return changeOf(folder.first) == folder.second;
  });
  if (!current) readFolders();
  std::optional<std::string> name = entryNameOf(window);
  if (!name && !window.className.empty()) name = window.className;
  known_.emplace(applicationKey, name);
  return name;
}

std::optional<std::string> ApplicationNames::entryNameOf(const ClientWindow& window) const {
  const auto in = [](const auto& table, const std::string& key) -> std::optional<std::string> {
    const auto found = table.find(key);
    return key.empty() || found == table.end() ? std::nullopt : std::optional(found->second);
  };
  for (const std::string& name : {window.className, window.instance}) {
    if (auto found = in(entries_.byClass, name)) return found;
  }
  for (const std::string& name :
       {window.gtkApplicationId, window.className, lowerCase(window.className), window.instance,
        lastPart(window.gtkApplicationId), lastPart(window.className)}) {
    if (auto found = in(entries_.byFile, name)) return found;
  }
  return std::nullopt;
}

void ApplicationNames::readFolders() {
  entries_ = {};
  folders_.clear();
  for (const QString& path :
       QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
    folders_.emplace_back(path, changeOf(path));
    QDirIterator below(path, {QLatin1Char('*') + kSuffix},
                       QDir::Files | QDir::AllDirs | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
    while (below.hasNext()) {
      const QString item = below.next();
      if (below.fileInfo().isDir()) {
        folders_.emplace_back(item, changeOf(item));
      } else {
        // The names of folders become part of the entries' own.
        QString name = QDir(path).relativeFilePath(item).chopped(kSuffix.size());
        readEntry(item, name.replace(QLatin1Char('/'), QLatin1Char('-')).toStdString());
      }
    }
  }
}

void ApplicationNames::readEntry(const QString& path, const std::string& file) {
  // An entry of an earlier folder stands before one of the same name in a later one.
  if (entries_.byFile.contains(file)) return;
  QFile entry(path);
  if (!entry.open(QIODevice::ReadOnly)) return;
  static const QByteArrayList keys = keysRead();
  std::vector<std::string> values(static_cast<std::size_t>(keys.size()));
  bool inEntry = false;
  for (const QByteArray& line : entry.read(kLargestEntry).split('\n')) {
    if (line.startsWith('[')) {
      if (inEntry) break;
      inEntry = line.startsWith("[Desktop Entry]");
    }
    const auto equals = line.indexOf('=');
    const auto key = inEntry && equals >= 0 ? keys.indexOf(line.left(equals).trimmed()) : -1;
    if (key >= 0)
      values[static_cast<std::size_t>(key)] = line.mid(equals + 1).trimmed().toStdString();
  }
  const auto name = std::find_if(values.begin() + 1, values.end(),
                                 [](const std::string& value) { return !value.empty(); });
  if (name == values.end()) return;
  entries_.byFile.emplace(file, *name);
  if (!values.front().empty()) entries_.byClass.emplace(values.front(), *name);
}

}  // namespace linux_desktop
