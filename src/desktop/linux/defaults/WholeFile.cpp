#include "desktop/linux/defaults/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "desktop/linux/process/FileDescriptor.h"

namespace linux_desktop {

namespace {

namespace fs = std::filesystem;

FileError lastError() {
  return {std::generic_category().message(errno)};
}

// What a chain of links ends at, whether or not that exists.
std::variant<fs::path, FileError> followLinks(fs::path file) {
  for (int links = 0; links < 40; ++links) {
    std::error_code error;
    const fs::path target = fs::read_symlink(file, error);
    if (error) return file;
    file = file.parent_path() / target;
  }
  errno = ELOOP;
  return lastError();
}

bool makeFolders(const fs::path& folder) {
  if (folder.empty() || ::mkdir(folder.c_str(), 0700) == 0) return true;
  if (errno == EEXIST) return true;
  if (errno != ENOENT || folder == folder.parent_path()) return false;
  return makeFolders(folder.parent_path()) && ::mkdir(folder.c_str(), 0700) == 0;
}

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool isFlushed(int descriptor) {
  return ::fsync(descriptor) == 0;
}

// Some file systems cannot flush a folder and say so; there is nothing more to do then.
bool flushFolderOf(const fs::path& file) {
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
  const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return descriptor.isOpen() && (isFlushed(descriptor.get()) || errno == EINVAL);
}

// A file of its own beside the real one, gone again unless it took its place.
class Draft {
 public:
  explicit Draft(const fs::path& beside)
      : name_(beside.string() + ".XXXXXX"), descriptor_(::mkostemp(name_.data(), O_CLOEXEC)) {}
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;
  ~Draft() {
    if (descriptor_.isOpen() && !placed_) ::unlink(name_.c_str());
  }

  bool fill(std::string_view bytes) {
    return descriptor_.isOpen() && writeAll(descriptor_.get(), bytes) &&
           isFlushed(descriptor_.get());
  }
  bool moveTo(const fs::path& file) {
    placed_ = ::rename(name_.c_str(), file.c_str()) == 0;
    return placed_;
  }

 private:
  std::string name_;
  FileDescriptor descriptor_;
  bool placed_ = false;
};

// errno is EEXIST when `to` is there already.
bool renameWithoutReplacing(const fs::path& from, const fs::path& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  // The file system does not know the flag.
  struct stat status {};
  if (::lstat(to.c_str(), &status) == 0) {
    errno = EEXIST;
    return false;
  }
  return errno == ENOENT && ::rename(from.c_str(), to.c_str()) == 0;
}

}  // namespace

std::variant<std::string, FileAbsent, FileTooBig, FileError> readWhole(const fs::path& file,
                                                                       std::size_t limit) {
  const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!descriptor.isOpen() && errno == ENOENT) return FileAbsent{};
  struct stat status {};
  if (!descriptor.isOpen() || ::fstat(descriptor.get(), &status) != 0) return lastError();
  if (!S_ISREG(status.st_mode)) return FileError{"not an ordinary file"};

  std::string bytes;
  std::array<char, 65536> buffer{};
  while (bytes.size() <= limit) {
    const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
    if (count == 0) return bytes;
    if (count < 0 && errno != EINTR) return lastError();
    if (count > 0) bytes.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return FileTooBig{};
}

std::optional<FileError> replaceWhole(const fs::path& file, std::string_view bytes) {
  const auto followed = followLinks(file);
  if (const auto* error = std::get_if<FileError>(&followed)) return *error;
  const auto& target = std::get<fs::path>(followed);
  if (!makeFolders(target.parent_path())) return lastError();
  if (::euidaccess(target.c_str(), W_OK) != 0 && errno != ENOENT) return lastError();
  Draft draft(target);
  if (!draft.fill(bytes) || !draft.moveTo(target) || !flushFolderOf(target)) return lastError();
  return std::nullopt;
}

std::variant<fs::path, FileError> setAside(const fs::path& file) {
  constexpr int kMostNames = 10'000;
  auto followed = followLinks(file);
  if (std::holds_alternative<FileError>(followed)) return followed;
  const auto target = std::get<fs::path>(std::move(followed));
  for (int number = 1; number <= kMostNames; ++number) {
    const std::string suffix = number == 1 ? ".broken" : ".broken-" + std::to_string(number);
    const fs::path name = target.string() + suffix;
    if (renameWithoutReplacing(target, name)) {
      if (!flushFolderOf(target)) return lastError();
      return name;
    }
    if (errno != EEXIST) break;
  }
  return lastError();
}

}  // namespace linux_desktop
