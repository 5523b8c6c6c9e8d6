#pragma once

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QStringList>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <variant>

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

/// Why the system refused, as a user may read it.
struct FileError {
  std::string reason;
};
struct FileAbsent {};
struct FileTooBig {};

/// The whole of an ordinary file that has at most `limit` bytes; links are followed. A link to
/// nowhere is an absent file. Anything but an ordinary file is an error; it is not waited for.
[[nodiscard]] std::variant<QByteArray, FileAbsent, FileTooBig, FileError> readWhole(
    const std::filesystem::path& file, qsizetype limit);

/// Who may use a file that is written: whoever could before, or nobody but its owner.
enum class Access { AsBefore, OwnerOnly };

/// Gives `file` the content `bytes`; none on success, when the content has reached the disk. With
/// an error, or when the machine stops in between, the file is wholly the old or wholly the new
/// one. A link is kept and its target replaced. Missing folders are made with mode 0700. A file
/// without the right to write is left alone.
[[nodiscard]] std::optional<FileError> replaceWhole(const std::filesystem::path& file,
                                                    const QByteArray& bytes,
                                                    Access access = Access::AsBefore);

/// Renames `file` (of a link, the target) to its own name with `.broken` added, or `.broken-2`,
/// `.broken-3`, ... when that is taken, and returns the new name. Never replaces a file.
[[nodiscard]] std::variant<std::filesystem::path, FileError> setAside(
    const std::filesystem::path& file);

}  // namespace linux_desktop
