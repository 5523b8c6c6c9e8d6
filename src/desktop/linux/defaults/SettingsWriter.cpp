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

SettingsWriter::SettingsWriter(std::filesystem::path file) : file_(std::move(file)) {
  thread_.setMaxThreadCount(1);
  // It would wake, only to end.
  thread_.setExpiryTimeout(-1);
  static const int registered = std::atexit([] {
    if (SettingsWriter* writer = writerAtExit) writer->finish();
  });
  static_cast<void>(registered);
  writerAtExit = this;
}

SettingsWriter::~SettingsWriter() {
  SettingsWriter* self = this;
  writerAtExit.compare_exchange_strong(self, nullptr);
  finish();
}

void SettingsWriter::write(QByteArray content) {
  {
    const std::lock_guard lock(mutex_);
    newest_ = std::move(content);
    if (std::exchange(isDue_, true)) return;
  }
  thread_.start([this] { storeNewest(); });
}

void SettingsWriter::complain(const std::string& message) const {
  qCWarning(lcDefaults, "Settings file %s: %s", file_.c_str(), message.c_str());
}

void SettingsWriter::finish() {
  thread_.waitForDone();
  if (behind_) store(newest_);
}

void SettingsWriter::storeNewest() {
  QByteArray content;
  {
    const std::lock_guard lock(mutex_);
    content = newest_;
    isDue_ = false;
  }
  store(content);
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
