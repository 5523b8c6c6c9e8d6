#include "desktop/linux/defaults/SettingsWriter.h"

#include <QLoggingCategory>
#include <atomic>
#include <cstdlib>
#include <utility>

#include "desktop/linux/files/WholeFile.h"

namespace linux_desktop {
namespace {

Q_LOGGING_CATEGORY(lcDefaults, "calmdeck.defaults", QtWarningMsg)

// Libraries end the process by exit() when the X server goes, which destroys no desktop.
std::atomic<SettingsWriter*> writerAtExit;

}  // namespace

SettingsWriter::~SettingsWriter() {
  SettingsWriter* self = this;
  writerAtExit.compare_exchange_strong(self, nullptr);
  finish();
}

void SettingsWriter::write(QByteArray content) {
  const std::lock_guard lock(mutex_);
  newest_ = std::move(content);
  isDue_ = true;
  if (!thread_.joinable()) start();
  changed_.notify_one();
}

void SettingsWriter::complain(const std::string& message) const {
  qCWarning(lcDefaults, "Settings file %s: %s", file_.c_str(), message.c_str());
}

void SettingsWriter::start() {
  static const int registered = std::atexit([] {
    if (SettingsWriter* writer = writerAtExit) writer->finish();
  });
  static_cast<void>(registered);
  writerAtExit = this;
  thread_ = std::thread([this] { work(); });
}

void SettingsWriter::finish() {
  {
    const std::lock_guard lock(mutex_);
    isLast_ = true;
  }
  changed_.notify_one();
  if (thread_.joinable()) thread_.join();
}

void SettingsWriter::work() {
  std::unique_lock lock(mutex_);
  for (bool last = false; !last;) {
    changed_.wait(lock, [this] { return isDue_ || isLast_; });
    if (!isDue_ && !behind_) return;
    last = isLast_;
    isDue_ = false;
    const QByteArray content = newest_;
    lock.unlock();
    store(content);
    lock.lock();
  }
}

void SettingsWriter::store(const QByteArray& content) {
  const auto error = content.size() > kLargestSettings
                         ? FileError{"it would be bigger than 1 MiB"}
                         : replaceWhole(file_, content, Access::OwnerOnly);
  if (error && !behind_) {
    complain("it cannot be written (" + error->reason +
             "); what changes is kept for this run and written as soon as that works");
  }
  behind_ = error.has_value();
}

}  // namespace linux_desktop
