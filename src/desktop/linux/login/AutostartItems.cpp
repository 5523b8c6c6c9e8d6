#include "desktop/linux/login/AutostartItems.h"

#include <QStandardPaths>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <system_error>
#include <tuple>
#include <utility>

#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/login/AutostartEntry.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {

using platform::port::LoginItem;

namespace {

namespace fs = std::filesystem;
using Time = fs::file_time_type;

constexpr std::string_view kSuffix = ".desktop";
constexpr qsizetype kLargestEntry = qsizetype{1} << 18U;

/// `org.calmdeck.Calmdeck.desktop` is first, the name of the program's installed entry.
std::string ownName(int number) {
  const std::string distinction = number == 1 ? "" : "-" + std::to_string(number);
  return "org.calmdeck.Calmdeck" + distinction + std::string(kSuffix);
}

bool isNothing(std::error_code error) {
  return error == std::errc::no_such_file_or_directory;
}

/// A link to nowhere is the oldest of all.
Time timeOf(const fs::path& file) {
  std::error_code error;
  const Time time = fs::last_write_time(file, error);
  return error ? Time::min() : time;
}

std::optional<std::string> textOf(const fs::path& file) {
  const auto content = readWhole(file, kLargestEntry);
  const auto* text = std::get_if<QByteArray>(&content);
  return text != nullptr ? std::optional(text->toStdString()) : std::nullopt;
}

/// On one line, whatever it contains.
std::string shown(std::string_view path) {
  std::string text(path);
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < 0x20 || c == 0x7f; }, '?');
  return text;
}

struct Listed {
  Time time;
  std::string name;
};

std::vector<Listed> listedIn(const fs::path& folder, std::error_code& error) {
  std::vector<Listed> listed;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::string name = entry->path().filename();
    if (name.ends_with(kSuffix)) listed.push_back({timeOf(entry->path()), std::move(name)});
  }
  if (isNothing(error)) error.clear();
  std::ranges::sort(listed, {},
                    [](const Listed& entry) { return std::tie(entry.time, entry.name); });
  return listed;
}

}  // namespace

AutostartItems::AutostartItems(std::vector<fs::path> folders) : folders_(std::move(folders)) {}

std::vector<fs::path> AutostartItems::standardFolders() {
  std::vector<fs::path> folders;
  for (const QString& folder :
       QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation)) {
    folders.push_back(fs::path(folder.toStdString()) / "autostart");
  }
  return folders;
}

std::optional<std::vector<LoginItem>> AutostartItems::items() {
  std::error_code error;
  std::vector<LoginItem> items;
  for (Listed& listed : listedIn(folders_.front(), error)) {
    items.push_back({std::move(listed.name)});
  }
  if (error && !complained_) {
    qCWarning(lcLogin, "%s: it cannot be read (%s), so what starts at login stays as it is",
              folders_.front().c_str(), error.message().c_str());
  }
  complained_ = static_cast<bool>(error);
  if (error) return std::nullopt;
  return items;
}

std::optional<std::string> AutostartItems::resolve(const LoginItem& item) {
  const auto text = textOf(fileOf(item.identifier));
  return text ? programOfEntry(*text) : std::nullopt;
}

std::optional<LoginItem> AutostartItems::insert(std::string_view path,
                                                const std::optional<LoginItem>&) {
  if (const auto reason = whatForbidsEntry(path)) {
    qCWarning(lcLogin, "%s: no desktop would start it at login, because %s", shown(path).c_str(),
              reason->c_str());
    return std::nullopt;
  }
  std::error_code ignored;  // said by items() where it matters
  const std::vector<Listed> others = listedIn(folders_.front(), ignored);
  const auto name = freeName();
  const auto error = name ? replaceWhole(fileOf(*name), QByteArray::fromStdString(entryFor(path)))
                          : FileError{"too many entries of Calmdeck"};
  if (error) {
    qCWarning(lcLogin, "%s: no entry can be added (%s), so Calmdeck is not started at login",
              folders_.front().c_str(), error->reason.c_str());
    return std::nullopt;
  }
  if (!others.empty()) makeNewest(fileOf(*name), others.back().time);
  return LoginItem{*name};
}

bool AutostartItems::remove(const LoginItem& item) {
  const fs::path file = fileOf(item.identifier);
  std::error_code error;
  const bool removed = fs::remove(file, error);
  std::string reason = error ? error.message() : "";
  if (removed && isThereForAllUsers(item.identifier)) {
    const auto failure = replaceWhole(file, QByteArray::fromStdString(entryForNothing()));
    if (failure) reason = failure->reason;
  }
  if (reason.empty()) return removed;
  qCWarning(lcLogin, "%s: it cannot be switched off (%s)", file.c_str(), reason.c_str());
  return false;
}

fs::path AutostartItems::fileOf(const std::string& name) const {
  return folders_.front() / name;
}

std::optional<std::string> AutostartItems::freeName() const {
  constexpr int kMostNames = 100;
  for (int number = 1; number <= kMostNames; ++number) {
    const std::string name = ownName(number);
    std::error_code error;
    const bool isFree = !fs::exists(fs::symlink_status(fileOf(name), error));
    if (isFree || textOf(fileOf(name)) == entryForNothing()) return name;
  }
  return std::nullopt;
}

bool AutostartItems::isThereForAllUsers(const std::string& name) const {
  return std::any_of(std::next(folders_.begin()), folders_.end(), [&](const fs::path& folder) {
    std::error_code error;
    return fs::exists(folder / name, error);
  });
}

/// Clocks are coarse and may have been wrong, and the new entry is the last one all the same.
void AutostartItems::makeNewest(const fs::path& file, Time than) const {
  std::error_code error;
  if (timeOf(file) <= than) fs::last_write_time(file, than + std::chrono::microseconds(1), error);
  if (error) qCDebug(lcLogin, "%s: its age stays (%s)", file.c_str(), error.message().c_str());
}

}  // namespace linux_desktop
