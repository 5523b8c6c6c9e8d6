#include "desktop/harness/PrivateHome.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <vector>

namespace harness {

namespace fs = std::filesystem;

namespace {

constexpr const char* kInherited[] = {"PATH",         "LC_ALL",       "LD_LIBRARY_PATH", "TZ",
                                      "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"};

std::string wholeFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A zombie's environment reads empty, so that only living processes are found.
std::vector<pid_t> processesWith(const std::string& assignment) {
  std::vector<pid_t> found;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    pid_t pid = 0;
    if (std::from_chars(name.data(), name.data() + name.size(), pid).ec != std::errc{}) continue;
    const std::string environment = '\0' + wholeFile(entry.path() / "environ");
    if (environment.find('\0' + assignment + '\0') != std::string::npos) found.push_back(pid);
  }
  return found;
}

// Again until none is left: one that was just forking is found in the next round.
void killAllWith(const std::string& assignment) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  for (;;) {
    const std::vector<pid_t> living = processesWith(assignment);
    if (living.empty()) return;
    if (std::chrono::steady_clock::now() > deadline) {
      std::cerr << "processes of a private desktop are left: " << assignment << '\n';
      return;
    }
    for (const pid_t pid : living) ::kill(pid, SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

}  // namespace

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
  killAllWith("XDG_RUNTIME_DIR=" + runtime().string());
  std::error_code failure;
  fs::remove_all(folder_, failure);
  if (failure) std::cerr << "cannot remove " << folder_ << ": " << failure.message() << '\n';
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
