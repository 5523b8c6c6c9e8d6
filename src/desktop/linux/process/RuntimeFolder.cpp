#include "desktop/linux/process/RuntimeFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QStandardPaths>

namespace linux_desktop {

namespace {

namespace fs = std::filesystem;

// Not so after `sudo`, which may keep the variable of another user.
bool isOursAlone(const fs::path& folder) {
  struct stat status {};
  return folder.is_absolute() && ::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == ::geteuid() && (status.st_mode & 077U) == 0 &&
         ::euidaccess(folder.c_str(), W_OK | X_OK) == 0;
}

}  // namespace

std::optional<fs::path> runtimeFolder() {
  fs::path folder = qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString();
  if (isOursAlone(folder)) return folder;

  const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  QDir().mkpath(cache);
  folder = fs::path(cache.toStdString()) / "calmdeck";
  if (::mkdir(folder.c_str(), 0700) != 0) ::chmod(folder.c_str(), 0700);
  if (isOursAlone(folder)) return folder;
  return std::nullopt;
}

}  // namespace linux_desktop
