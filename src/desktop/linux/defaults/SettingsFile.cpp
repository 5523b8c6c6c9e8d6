#include "desktop/linux/defaults/SettingsFile.h"

#include <QLoggingCategory>
#include <QStandardPaths>
#include <utility>

#include "desktop/linux/defaults/WholeFile.h"
#include "platform/foundation/ProgrammingError.h"

namespace linux_desktop {

namespace {

Q_LOGGING_CATEGORY(lcDefaults, "calmdeck.defaults", QtWarningMsg)

namespace fs = std::filesystem;

void warn(const fs::path& file, const std::string& message) {
  qCWarning(lcDefaults, "Settings file %s: %s", file.c_str(), message.c_str());
}

}  // namespace

SettingsFile::SettingsFile(fs::path file) : file_(std::move(file)) {
  const auto content = readWhole(file_, kLargestFile);
  if (const auto* text = std::get_if<std::string>(&content)) {
    take(*text);
  } else if (std::holds_alternative<FileTooBig>(content)) {
    startAgain("bigger than 1 MiB");
  } else if (const auto* error = std::get_if<FileError>(&content)) {
    keepForThisRun("it cannot be read (" + error->reason + ")");
  }
}

SettingsFile::~SettingsFile() {
  if (behind_) store();
}

fs::path SettingsFile::standardPath() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return fs::path(folder.toStdString()) / "calmdeck" / "settings.json";
}

std::optional<platform::Value> SettingsFile::object(std::string_view key) const {
  const auto found = members_.find(key);
  return found == members_.end() ? std::nullopt : found->second.value;
}

void SettingsFile::set(std::string_view key, platform::Value value) {
  std::optional<std::string> text = jsonText(value);
  if (!text) {
    platform::programmingError("the setting " + std::string(key) +
                               " was given a value that settings cannot hold");
  }
  if (!behind_ && object(key) == value) return;
  members_.insert_or_assign(std::string(key), JsonMember{std::move(*text), std::move(value)});
  store();
}

void SettingsFile::remove(std::string_view key) {
  const auto found = members_.find(key);
  if (found != members_.end())
    members_.erase(found);
  else if (!behind_)
    return;
  store();
}

void SettingsFile::take(std::string_view text) {
  auto result = readJson(text);
  if (const auto* error = std::get_if<JsonError>(&result)) {
    startAgain("no settings in line " + std::to_string(error->line) + ", column " +
               std::to_string(error->column) + ": " + error->reason);
  } else {
    members_ = std::get<JsonMembers>(std::move(result));
  }
}

void SettingsFile::startAgain(const std::string& reason) {
  const auto aside = setAside(file_);
  if (const auto* error = std::get_if<FileError>(&aside)) {
    keepForThisRun(reason + "; it cannot be renamed either (" + error->reason + ")");
  } else {
    warn(file_, reason + "; it is now " + std::get<fs::path>(aside).string() +
                    " and the settings start empty");
  }
}

void SettingsFile::keepForThisRun(const std::string& reason) {
  mayWrite_ = false;
  warn(file_, reason +
                  "; the settings start empty, are kept for this run only and the file stays "
                  "as it is");
}

void SettingsFile::store() {
  if (!mayWrite_) return;
  const std::string text = writeJson(members_);
  // A bigger one would not be read again.
  const auto error = text.size() > kLargestFile ? FileError{"it would be bigger than 1 MiB"}
                                                : replaceWhole(file_, text);
  if (error && !behind_) {
    warn(file_, "it cannot be written (" + error->reason +
                    "); what changes is kept for this run and written as soon as that works");
  }
  behind_ = error.has_value();
}

}  // namespace linux_desktop
