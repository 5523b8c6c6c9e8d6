#pragma once

#include <QFileSystemWatcher>
#include <QStringList>
#include <functional>

namespace linux_desktop {

/// Tells of every change of some files, also while they do not exist yet or are replaced. The
/// kernel reports; nothing is polled. Main thread only.
class FileWatch {
 public:
  FileWatch(QStringList files, std::function<void()> changed);

 private:
  void arm();

  QStringList files_;
  QFileSystemWatcher watcher_;
};

}  // namespace linux_desktop
