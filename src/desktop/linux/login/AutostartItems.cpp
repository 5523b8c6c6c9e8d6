#include "desktop/linux/login/AutostartItems.h"

#include <glib.h>

#include <QCoreApplication>
#include <QStandardPaths>
#include <QString>
#include <algorithm>
#include <iterator>
#include <memory>
#include <system_error>
#include <tuple>
#include <utility>

#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/log/Log.h"
#include "platform/foundation/Utf8.h"

namespace linux_desktop {
namespace {

namespace fs = std::filesystem;

template <auto Free>
struct Release {
  template <typename T>
  void operator()(T* pointer) const {
    Free(pointer);
  }
};
using KeyFile = std::unique_ptr<GKeyFile, Release<&g_key_file_unref>>;
using Text = std::unique_ptr<gchar, Release<&g_free>>;
using Words = std::unique_ptr<gchar*, Release<&g_strfreev>>;

std::optional<std::string> valueOf(GKeyFile& file, const char* key) {
  const Text value(g_key_file_get_string(&file, G_KEY_FILE_DESKTOP_GROUP, key, nullptr));
  if (!value) return std::nullopt;
  return std::string(value.get());
}

std::optional<std::string> firstWord(const std::string& commandLine) {
  gchar** words = nullptr;
  if (g_shell_parse_argv(commandLine.c_str(), nullptr, &words, nullptr) == FALSE) {
    return std::nullopt;
  }
  return std::string(*Words(words));
}

/// Of the field codes only the doubled per cent sign can be in the name of a program.
std::optional<std::string> withoutFieldCodes(const std::string& word) {
  std::string plain;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (word[i] == '%' && (++i == word.size() || word[i] != '%')) return std::nullopt;
    plain += word[i];
  }
  return plain;
}

fs::path withoutLinks(const fs::path& path) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return error ? path.lexically_normal() : real;
}

std::optional<std::string> located(const std::string& program) {
  fs::path path = program;
  if (!path.is_absolute()) {
    path = QStandardPaths::findExecutable(QString::fromStdString(program)).toStdString();
    if (path.empty()) return std::nullopt;
  }
  return withoutLinks(path);
}

/// What need not be quoted in an Exec line.
bool isPlain(char c) {
  return g_ascii_isalnum(c) != FALSE ||
         std::string_view("/._-+,:@").find(c) != std::string_view::npos;
}

/// The absolute path of the program that an entry's Exec line starts, free of links; none when the
/// text is no entry of an application or its program cannot be found. An entry that is switched off
/// counts, and so does one whose TryExec is not there.
std::optional<std::string> programOfEntry(std::string_view text) {
  const KeyFile file(g_key_file_new());
  if (g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr) ==
          FALSE ||
      valueOf(*file, G_KEY_FILE_DESKTOP_KEY_TYPE) != G_KEY_FILE_DESKTOP_TYPE_APPLICATION) {
    return std::nullopt;
  }
  const auto commandLine = valueOf(*file, G_KEY_FILE_DESKTOP_KEY_EXEC);
  const auto word = commandLine ? firstWord(*commandLine) : std::nullopt;
  const auto program = word ? withoutFieldCodes(*word) : std::nullopt;
  return program && !program->empty() ? located(*program) : std::nullopt;
}

/// Why no entry can start the program at `path`: launchers disagree on what some characters in a
/// path mean. None when all of them start it.
std::optional<std::string> whatForbidsEntry(std::string_view path) {
  if (!path.starts_with('/')) return "it is not absolute";
  if (!platform::isUtf8(path)) return "it is not UTF-8";
  const auto forbidden = std::ranges::find_if(path, [](char c) {
    return std::string_view("%\"$`\\").find(c) != std::string_view::npos ||
           g_ascii_iscntrl(c) != FALSE;
  });
  if (forbidden == path.end()) return std::nullopt;
  if (g_ascii_iscntrl(*forbidden) != FALSE) return "it contains a control character";
  return std::string("it contains the character ") + *forbidden;
}

/// An entry for the program at this absolute path, which nothing forbids.
std::string entryFor(std::string_view path) {
  const std::string program(path);
  const std::string word = std::ranges::all_of(path, isPlain) ? program : '"' + program + '"';
  return "[Desktop Entry]\n"
         "Type=Application\n"
         "Name=Calmdeck\n"
         "Comment=Make the desktop fit to be seen with one click\n"
         "Exec=" +
         word +
         "\n"
         "TryExec=" +
         program +
         "\n"
         "Icon=org.calmdeck.Calmdeck\n"
         "Terminal=false\n"
         "X-GNOME-Autostart-enabled=true\n"
         "X-KDE-autostart-after=panel\n";
}

/// An entry that starts nothing, and hides one of the same name that is there for all users.
std::string entryForNothing() {
  return "[Desktop Entry]\n"
         "Type=Application\n"
         "Name=Calmdeck\n"
         "Hidden=true\n";
}

using platform::port::LoginItem;
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

/// A program that some other AppImage has started inherits the same variables, so only who lies in
/// the folder at which an AppImage is mounted runs from it.
bool liesIn(const fs::path& folder, const fs::path& file) {
  if (!folder.is_absolute()) return false;
  const fs::path inside = file.lexically_relative(withoutLinks(folder));
  return !inside.empty() && *inside.begin() != "..";
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

std::string ownProgramPath() {
  const fs::path program = withoutLinks(QCoreApplication::applicationFilePath().toStdString());
  const fs::path image = qEnvironmentVariable("APPIMAGE").toStdString();
  const bool runsFromImage =
      image.is_absolute() && liesIn(qEnvironmentVariable("APPDIR").toStdString(), program);
  return runsFromImage ? withoutLinks(image) : program;
}

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
