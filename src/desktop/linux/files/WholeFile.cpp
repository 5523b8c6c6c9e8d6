#include "desktop/linux/files/WholeFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <system_error>

namespace linux_desktop {
namespace {

namespace fs = std::filesystem;

QString nameOf(const fs::path& file) {
  return QString::fromStdString(file.string());
}

FileError lastError() {
  return {std::generic_category().message(errno)};
}

FileError errorOf(const QFileDevice& file) {
  if (file.error() == QFileDevice::NoError) return lastError();
  return {file.errorString().toStdString()};
}

bool makeFolders(const fs::path& folder) {
  if (folder.empty() || ::mkdir(folder.c_str(), 0700) == 0) return true;
  if (errno == EEXIST) return true;
  if (errno != ENOENT || folder == folder.parent_path()) return false;
  return makeFolders(folder.parent_path()) && ::mkdir(folder.c_str(), 0700) == 0;
}

// QSaveFile flushes to the disk as well, but does not tell when the disk refuses.
bool fill(QSaveFile& file, const QByteArray& bytes) {
  return file.write(bytes) == bytes.size() && file.flush() && ::fsync(file.handle()) == 0;
}

}  // namespace

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

std::variant<QByteArray, FileAbsent, FileTooBig, FileError> readWhole(const fs::path& file,
                                                                      qsizetype limit) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (status.type() == fs::file_type::not_found) return FileAbsent{};
  if (error) return FileError{error.message()};
  if (!fs::is_regular_file(status)) return FileError{"not an ordinary file"};
  QFile stored(nameOf(file));
  if (!stored.open(QIODevice::ReadOnly)) return errorOf(stored);
  QByteArray bytes = stored.read(limit + 1);
  if (stored.error() != QFileDevice::NoError) return errorOf(stored);
  if (bytes.size() > limit) return FileTooBig{};
  return bytes;
}

std::optional<FileError> replaceWhole(const fs::path& file, const QByteArray& bytes,
                                      Access access) {
  if (!makeFolders(file.parent_path())) return lastError();
  QSaveFile saved(nameOf(file));
  if (!saved.open(QIODevice::WriteOnly)) return errorOf(saved);
  if (access == Access::OwnerOnly) saved.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
  if (!fill(saved, bytes) || !saved.commit()) return errorOf(saved);
  return std::nullopt;
}

std::variant<fs::path, FileError> setAside(const fs::path& file) {
  constexpr int kMostNames = 10'000;
  std::error_code error;
  const fs::path target = fs::canonical(file, error);
  if (error) return FileError{error.message()};
  QFile broken(nameOf(target));
  for (int number = 1; number <= kMostNames; ++number) {
    const std::string suffix = number == 1 ? ".broken" : ".broken-" + std::to_string(number);
    const fs::path name = target.string() + suffix;
    if (fs::exists(fs::symlink_status(name, error))) continue;
    if (broken.rename(nameOf(name))) return name;
    return errorOf(broken);
  }
  return FileError{"all names for it are taken"};
}

}  // namespace linux_desktop
