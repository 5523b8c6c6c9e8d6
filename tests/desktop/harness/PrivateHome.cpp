#include "desktop/harness/PrivateHome.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

namespace harness {

namespace fs = std::filesystem;

namespace {

constexpr const char* kInherited[] = {"PATH",         "LD_LIBRARY_PATH", "TZ",
                                      "ASAN_OPTIONS", "LSAN_OPTIONS",    "UBSAN_OPTIONS"};

// The state is the first thing behind the name, which may hold anything in its brackets.
bool waits(const fs::path& task) {
  const std::string stat = textOf(task / "stat");
  const std::size_t name = stat.rfind(')');
  if (name == std::string::npos || name + 2 >= stat.size()) return true;  // it has just ended
  const char state = stat[name + 2];
  return state != 'R' && state != 'D';
}

bool allWait(pid_t process) {
  std::error_code ended;
  const fs::path tasks = fs::path("/proc") / std::to_string(process) / "task";
  for (const fs::directory_entry& task : fs::directory_iterator(tasks, ended)) {
    if (!waits(task.path())) return false;
  }
  return true;
}

bool isXServer(pid_t process) {
  return textOf(fs::path("/proc") / std::to_string(process) / "comm").starts_with("Xvnc");
}

}  // namespace

std::string textOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string filled(std::string text, const Environment& values) {
  for (const auto& [name, value] : values) {
    const std::string mark = "{" + name + "}";
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += value.size())
      text.replace(at, mark.size(), value);
  }
  return text;
}

PrivateHome::PrivateHome() {
  std::string pattern = fs::temp_directory_path() / "calmdeck-desk-XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make " + pattern);
  folder_ = pattern;
  fs::create_directories(config());
  fs::create_directories(home() / ".local/share");
  fs::create_directory(runtime());
  fs::permissions(runtime(), fs::perms::owner_all);
}

PrivateHome::~PrivateHome() {
  // Again until none is left: one that was just forking is found in the next round.
  const auto killed = [this] {
    const std::vector<pid_t> living = processes();
    for (const pid_t pid : living) ::kill(pid, SIGKILL);
    return living.empty();
  };
  if (!until(killed)) std::cerr << "processes of a private desktop are left: " << folder_ << '\n';
  std::error_code failure;
  fs::remove_all(folder_, failure);
  if (failure) std::cerr << "cannot remove " << folder_ << ": " << failure.message() << '\n';
}

// A zombie's environment reads empty, so that only living processes are found.
std::vector<pid_t> PrivateHome::processes() const {
  const std::string assignment = '\0' + ("XDG_RUNTIME_DIR=" + runtime().string()) + '\0';
  std::vector<pid_t> found;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    pid_t pid = 0;
    if (std::from_chars(name.data(), name.data() + name.size(), pid).ec != std::errc{}) continue;
    const std::string environment = '\0' + textOf(entry.path() / "environ");
    if (environment.find(assignment) != std::string::npos) found.push_back(pid);
  }
  return found;
}

bool PrivateHome::isAtRest() const {
  const auto rests = [](pid_t process) { return isXServer(process) || allWait(process); };
  // Twice: work may be handed from one that is not looked at yet to one that was.
  return std::ranges::all_of(processes(), rests) && std::ranges::all_of(processes(), rests);
}

Environment PrivateHome::environment() const {
  const Environment own = ownEnvironment();
  Environment environment{
      {"HOME", home()},
      {"XDG_CONFIG_HOME", config()},
      {"XDG_CACHE_HOME", home() / ".cache"},
      {"XDG_DATA_HOME", home() / ".local/share"},
      {"XDG_STATE_HOME", home() / ".local/state"},
      {"XDG_RUNTIME_DIR", runtime()},
      // The machine's own services are nobody's to ask, let alone to start.
      {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + (runtime() / "system-bus").string()},
      {"LIBGL_ALWAYS_SOFTWARE", "1"},
      // What the program says is looked for in English.
      {"LC_ALL", "C.UTF-8"},
      // No peer needs the accessibility bus; what is tested asks for it by itself.
      {"NO_AT_BRIDGE", "1"},
  };
  for (const char* name : kInherited) {
    if (const auto found = own.find(name); found != own.end()) environment.insert(*found);
  }
  return environment;
}

void PrivateHome::writeConfig(const fs::path& name, const std::string& text) const {
  const fs::path path = config() / name;
  fs::create_directories(path.parent_path());
  std::ofstream file(path);
  if (!(file << text).flush()) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace harness
