#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "desktop/linux/defaults/JsonMembers.h"
#include "platform/port/DefaultsStore.h"

namespace linux_desktop {

/// The settings in one JSON file, a member a key. Main thread only.
///
/// The file is read once, by the constructor. Settings change rarely, so each change is written
/// before `set` or `remove` returns, synchronously and through to the disk: as a new file that
/// takes the old one's place, so that a reader or a crash never meets half a file. Members that
/// nobody changed keep their text, whatever their type.
///
/// Nothing is ever lost, and each of these is one line on standard error:
/// - A file that is no JSON object, or bigger than kLargestFile, is renamed (see setAside); the
///   settings start empty.
/// - A file that cannot be read, or not be renamed, is never written to; the settings live for this
///   run only.
/// - A write that fails leaves the file as it was. The line comes once, until a write succeeds
///   again; that one, tried at each further change and by the destructor, contains everything.
///
/// Only one process may write the file (see SingleInstance). Setting a range, a dictionary or a
/// number that is not finite is a programming error.
class SettingsFile final : public platform::port::DefaultsStore {
 public:
  static constexpr std::size_t kLargestFile = std::size_t{1} << 20U;

  explicit SettingsFile(std::filesystem::path file = standardPath());
  SettingsFile(const SettingsFile&) = delete;
  SettingsFile& operator=(const SettingsFile&) = delete;
  ~SettingsFile() override;

  /// `$XDG_CONFIG_HOME/calmdeck/settings.json`, with `~/.config` where the variable is not set.
  [[nodiscard]] static std::filesystem::path standardPath();

  [[nodiscard]] std::optional<platform::Value> object(std::string_view key) const override;
  void set(std::string_view key, platform::Value value) override;
  void remove(std::string_view key) override;

 private:
  void take(std::string_view text);
  void startAgain(const std::string& reason);
  void keepForThisRun(const std::string& reason);
  void store();

  std::filesystem::path file_;
  JsonMembers members_;
  bool mayWrite_ = true;
  bool behind_ = false;  // the file lacks something that members_ has
};

}  // namespace linux_desktop
