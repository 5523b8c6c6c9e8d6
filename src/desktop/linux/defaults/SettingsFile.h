#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <filesystem>
#include <string>

#include "desktop/linux/defaults/SettingsWriter.h"
#include "platform/port/Program.h"

namespace linux_desktop {

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
