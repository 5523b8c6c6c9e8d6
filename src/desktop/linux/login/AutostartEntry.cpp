#include "desktop/linux/login/AutostartEntry.h"

#include <glib.h>

#include <QStandardPaths>
#include <QString>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>

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

std::optional<std::string> located(const std::string& program) {
  fs::path path = program;
  if (!path.is_absolute()) {
    path = QStandardPaths::findExecutable(QString::fromStdString(program)).toStdString();
    if (path.empty()) return std::nullopt;
  }
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return error ? path.lexically_normal() : real;
}

/// What need not be quoted in an Exec line.
bool isPlain(char c) {
  return g_ascii_isalnum(c) != FALSE ||
         std::string_view("/._-+,:@").find(c) != std::string_view::npos;
}

}  // namespace

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

std::string entryForNothing() {
  return "[Desktop Entry]\n"
         "Type=Application\n"
         "Name=Calmdeck\n"
         "Hidden=true\n";
}

}  // namespace linux_desktop
