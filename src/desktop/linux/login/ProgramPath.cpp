#include "desktop/linux/login/ProgramPath.h"

#include <QCoreApplication>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace linux_desktop {
namespace {

namespace fs = std::filesystem;

fs::path fromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? fs::path() : fs::path(value);
}

fs::path withoutLinks(const fs::path& path) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return error ? path.lexically_normal() : real;
}

/// A program that some other AppImage has started inherits the same variables, so only who lies in
/// the folder at which an AppImage is mounted runs from it.
bool liesIn(const fs::path& folder, const fs::path& file) {
  if (!folder.is_absolute()) return false;
  const fs::path inside = file.lexically_relative(withoutLinks(folder));
  return !inside.empty() && *inside.begin() != "..";
}

}  // namespace

std::string ownProgramPath() {
  const fs::path program = withoutLinks(QCoreApplication::applicationFilePath().toStdString());
  const fs::path image = fromEnvironment("APPIMAGE");
  const bool runsFromImage = image.is_absolute() && liesIn(fromEnvironment("APPDIR"), program);
  return runsFromImage ? withoutLinks(image) : program;
}

}  // namespace linux_desktop
