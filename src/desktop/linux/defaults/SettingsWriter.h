#pragma once

#include <QByteArray>
#include <QThreadPool>
#include <filesystem>
#include <mutex>
#include <string>

namespace linux_desktop {

/// What a settings file may hold in bytes: a bigger one is not read and not written.
inline constexpr qsizetype kLargestSettings = qsizetype{1} << 20U;

/// Writes one settings file on a thread of its own, so that nobody waits for the disk. The thread
/// is there from the first write on and sleeps while there is nothing to do.
///
/// Contents are written whole, with mode 0600, in the order in which they come; one that still
/// waits when a newer one comes is left out. A write that fails is one line on standard error,
/// which comes once until a write succeeds again. The newest content is then tried again with the
/// next one and at the end.
class SettingsWriter {
 public:
  explicit SettingsWriter(std::filesystem::path file);
  SettingsWriter(const SettingsWriter&) = delete;
  SettingsWriter& operator=(const SettingsWriter&) = delete;
  /// Returns once the newest content is on the disk, or the last attempt has failed. The same
  /// happens when the process ends by `exit`, for the one that was made last.
  ~SettingsWriter();

  void write(QByteArray content);

  /// One line on standard error about the file.
  void complain(const std::string& message) const;

 private:
  void finish();
  void storeNewest();
  void store(const QByteArray& content);

  const std::filesystem::path file_;
  bool behind_ = false;  // the thread's own while it works: the file lacks the newest content

  std::mutex mutex_;
  QByteArray newest_;
  bool isDue_ = false;
  QThreadPool thread_;  // of one
};

}  // namespace linux_desktop
