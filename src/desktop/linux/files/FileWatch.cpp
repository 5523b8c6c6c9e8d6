#include "desktop/linux/files/FileWatch.h"

#include <QFileInfo>

namespace linux_desktop {

FileWatch::FileWatch(QStringList files, std::function<void()> changed) : files_(std::move(files)) {
  const auto act = [this, changed = std::move(changed)] {
    arm();
    changed();
  };
  QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged, &watcher_, act);
  QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_, act);
  arm();
}

void FileWatch::arm() {
  QStringList paths;
  for (const QString& file : files_) {
    if (QFileInfo::exists(file)) paths.push_back(file);
    QString folder = QFileInfo(file).path();
    while (!QFileInfo::exists(folder) && folder != QLatin1String("/")) {
      folder = QFileInfo(folder).path();
    }
    paths.push_back(folder);
  }
  paths.removeDuplicates();
  for (const QString& watched : watcher_.files() + watcher_.directories()) {
    paths.removeAll(watched);
  }
  if (!paths.isEmpty()) watcher_.addPaths(paths);
}

}  // namespace linux_desktop
