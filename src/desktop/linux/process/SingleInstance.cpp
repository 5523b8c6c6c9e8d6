#include "desktop/linux/process/SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <QDeadlineTimer>
#include <QThread>
#include <cerrno>
#include <cstring>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {

namespace {

namespace fs = std::filesystem;

constexpr const char* kLockName = "calmdeck.lock";
constexpr const char* kSocketName = "calmdeck.socket";

}  // namespace

SingleInstance::SingleInstance(std::function<void()> showRequested, std::optional<fs::path> folder)
    : showRequested_(std::move(showRequested)), folder_(std::move(folder)) {}

SingleInstance::Claim SingleInstance::claim(std::chrono::milliseconds patience) {
  if (!folder_) {
    qCWarning(lcProcess, "No folder for the lock: a second start will not be noticed");
    return Claim::First;
  }
  const QDeadlineTimer deadline(patience);
  do {
    const Lock lock = takeLock();
    if (lock == Lock::Taken) requests_.emplace(*folder_ / kSocketName, showRequested_);
    if (lock != Lock::Held) return Claim::First;
    if (ShowRequests::ask(*folder_ / kSocketName, deadline)) return Claim::HandedOver;
    // The first one is about to listen or to end: both take moments, and neither can be waited for.
    QThread::msleep(10);
  } while (!deadline.hasExpired());
  qCWarning(lcProcess, "Calmdeck runs already but does not answer");
  return Claim::Unanswered;
}

// flock and not QLockFile: that one guesses from the text in the file whether its writer still
// lives, and an empty file after a crash, or a new host name, would lock the user out for ever.
SingleInstance::Lock SingleInstance::takeLock() {
  const fs::path file = *folder_ / kLockName;
  FileDescriptor lock(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (lock.isOpen() && ::flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
    // The sticky bit keeps clean-up services away from files in the runtime folder.
    ::fchmod(lock.get(), S_ISVTX | 0600);
    lock_ = std::move(lock);
    return Lock::Taken;
  }
  if (lock.isOpen() && errno == EWOULDBLOCK) return Lock::Held;
  qCWarning(lcProcess, "No lock on %s (%s): a second start will not be noticed", file.c_str(),
            std::strerror(errno));
  return Lock::Impossible;
}

}  // namespace linux_desktop
