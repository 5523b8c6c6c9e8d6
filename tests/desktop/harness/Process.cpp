#include "desktop/harness/Process.h"

#include <glib.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace harness {

namespace {

using Clock = std::chrono::steady_clock;

// Pointers into strings that stay in place, with the closing null that exec wants.
std::vector<char*> pointersInto(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  pointers.reserve(strings.size() + 1);
  for (std::string& text : strings) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> asAssignments(const Environment& environment) {
  std::vector<std::string> assignments;
  assignments.reserve(environment.size());
  for (const auto& [name, value] : environment) {
    assignments.push_back(name);
    assignments.back().append("=").append(value);
  }
  return assignments;
}

// Between fork and exec, where the test's threads allow only async-signal-safe calls.
void leadGroup(void* parent) {
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  // A test under nohup must not hand on what it ignores.
  for (const int number : {SIGPIPE, SIGHUP, SIGINT, SIGTERM}) ::signal(number, SIG_DFL);
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != *static_cast<pid_t*>(parent)) ::_exit(127);  // it died before the line above
}

bool waitReadable(int descriptor, Clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd wait{descriptor, POLLIN, 0};
    const int ready = ::poll(&wait, 1, static_cast<int>(std::max<long>(left.count(), 0)));
    if (ready > 0) return true;
    if (ready == 0 && Clock::now() >= deadline) return false;
  }
}

}  // namespace

Environment ownEnvironment() {
  Environment environment;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string assignment = *entry;
    const std::size_t equals = assignment.find('=');
    if (equals != std::string::npos) {
      environment[assignment.substr(0, equals)] = assignment.substr(equals + 1);
    }
  }
  environment["LC_ALL"] = "C.UTF-8";
  return environment;
}

LineCapture::LineCapture() {
  for (Channel& channel : channels_) {
    channel.file = FileDescriptor(::memfd_create("output", MFD_CLOEXEC));
    if (channel.file.get() < 0) throw std::system_error(errno, std::generic_category(), "memfd");
  }
}

std::string LineCapture::textFrom(const Channel& channel, std::size_t start) {
  std::string text;
  std::array<char, 4096> buffer{};
  ssize_t count = 0;
  while ((count = ::pread(channel.file.get(), buffer.data(), buffer.size(),
                          static_cast<off_t>(start + text.size()))) > 0)
    text.append(buffer.data(), static_cast<std::size_t>(count));
  return text;
}

std::optional<std::string> LineCapture::takeLine(Stream stream, const std::regex& pattern,
                                                 bool hasEnded) {
  Channel& channel = channels_.at(static_cast<std::size_t>(stream));
  std::istringstream text(textFrom(channel, channel.cursor));
  for (std::string line; std::getline(text, line);) {
    const bool isWhole = !text.eof();
    if (!isWhole && !hasEnded) break;
    channel.cursor += line.size() + (isWhole ? 1 : 0);
    if (std::regex_search(line, pattern)) return line;
  }
  return std::nullopt;
}

Process::Process(const Command& command) {
  std::vector<std::string> argv = command.argv;
  std::vector<std::string> assignments = asAssignments(command.environment);
  const std::string directory = command.workingDirectory.string();
  pid_t parent = ::getpid();
  GError* failure = nullptr;
  g_spawn_async_with_pipes_and_fds(
      directory.empty() ? nullptr : directory.c_str(), pointersInto(argv).data(),
      pointersInto(assignments).data(),
      static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD), leadGroup, &parent,
      -1, capture_->end(Stream::Output), capture_->end(Stream::Error), nullptr, nullptr, 0, &pid_,
      nullptr, nullptr, nullptr, &failure);
  if (failure != nullptr) {
    const std::string reason = failure->message;
    g_error_free(failure);
    throw std::runtime_error(reason);
  }
  // Through syscall: glibc 2.36 declares pidfd_open without C linkage.
  pidDescriptor_ = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)));
}

Process::~Process() {
  terminate();
}

bool Process::running() {
  return !waitForExit(std::chrono::milliseconds::zero());
}

void Process::signal(int number) {
  if (!end_) ::kill(pid_, number);
}

void Process::freeze() {
  signalGroup(SIGSTOP);
  siginfo_t info{};
  if (!end_) ::waitid(P_PID, static_cast<id_t>(pid_), &info, WSTOPPED | WEXITED | WNOWAIT);
}

void Process::kill() {
  if (end_) return;
  signalGroup(SIGKILL);
  reap();
}

ProcessEnd Process::terminate(std::chrono::milliseconds grace) {
  if (end_) return *end_;
  signalGroup(SIGTERM);
  signalGroup(SIGCONT);
  if (!waitForExit(grace)) kill();
  return *end_;
}

std::optional<ProcessEnd> Process::waitForExit(std::chrono::milliseconds patience) {
  if (!end_ && waitReadable(pidDescriptor_.get(), Clock::now() + patience)) reap();
  return end_;
}

// Only when the child's end is certain. The group goes first, while the unreaped child still keeps
// its number from being given to somebody else.
void Process::reap() {
  int status = 0;
  siginfo_t info{};
  ::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT);
  signalGroup(SIGKILL);
  while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  end_ = WIFEXITED(status) ? ProcessEnd{WEXITSTATUS(status), 0} : ProcessEnd{-1, WTERMSIG(status)};
}

std::optional<std::string> Process::waitForLine(const std::string& pattern,
                                                std::chrono::milliseconds patience, Stream stream) {
  const std::regex wanted(pattern);
  std::optional<std::string> line;
  until(
      [&] {
        // First, lest the last words fall between the two looks.
        const bool hasEnded = end_ || waitReadable(pidDescriptor_.get(), Clock::now());
        line = capture_->takeLine(stream, wanted, hasEnded);
        return line || hasEnded;
      },
      patience);
  return line;
}

std::vector<std::string> Process::lines(const std::string& part, Stream stream) const {
  std::vector<std::string> found;
  std::istringstream all(capture_->text(stream));
  for (std::string line; std::getline(all, line);)
    if (line.find(part) != std::string::npos) found.push_back(line);
  return found;
}

RunResult runToEnd(const Command& command) {
  Process process(command);
  const std::optional<ProcessEnd> end = process.waitForExit();
  if (!end) throw std::runtime_error(command.argv.front() + " did not end in time");
  return {*end, process.output(), process.errorOutput()};
}

bool until(const std::function<bool()>& fact, std::chrono::milliseconds patience,
           const std::function<void()>& meanwhile) {
  // Turns of an event loop are the work itself; mere looks take the machine's time from it.
  const std::chrono::milliseconds pause{meanwhile ? 2 : 20};
  const auto deadline = Clock::now() + patience;
  while (!fact()) {
    if (Clock::now() >= deadline) return false;
    if (meanwhile) meanwhile();
    std::this_thread::sleep_for(pause);
  }
  return true;
}

}  // namespace harness
