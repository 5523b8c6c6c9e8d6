#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QThreadPool>
#include <filesystem>
#include <mutex>
#include <string>

#include "platform/port/Program.h"

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

/// The settings in one JSON file, a member a key. Main thread only.
///
/// The file is read once, by the constructor. Each change is seen at once and written behind the
/// caller's back, as a new file that takes the old one's place, so that a reader or a crash never
/// meets half a file (see SettingsWriter); all of it is on the disk when the process has ended.
/// Members that nobody changed keep their value, whatever their type.
///
/// Nothing is ever lost, and each of these is one line on standard error:
/// - A file that is no JSON object, or bigger than kLargestSettings, is renamed (see setAside); the
///   settings start empty.
/// - A file that cannot be read, or not be renamed, is never written to; the settings live for this
///   run only.
/// - A write that fails leaves the file as it was.
///
/// Only one process may write the file (see SingleInstance).
class SettingsFile final : public platform::port::DefaultsStore {
 public:
  explicit SettingsFile(std::filesystem::path file = standardPath());

  /// `$XDG_CONFIG_HOME/calmdeck/settings.json`, with `~/.config` where the variable is not set.
  [[nodiscard]] static std::filesystem::path standardPath();

  [[nodiscard]] std::optional<platform::Value> object(std::string_view key) const override;
  void set(std::string_view key, platform::Value value) override;
  void remove(std::string_view key) override;

 private:
  void take(const QByteArray& text);
  void startAgain(const std::string& reason);
  void keepForThisRun(const std::string& reason);
  void store();

  std::filesystem::path file_;
  QJsonObject members_;
  bool mayWrite_ = true;
  SettingsWriter writer_;
};

}  // namespace linux_desktop
