#include "desktop/harness/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace harness {

namespace {

using Clock = std::chrono::steady_clock;

struct Pipe {
  FileDescriptor reading;
  FileDescriptor writing;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe for a child");
  return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

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

// Everything that the child needs between fork and exec, prepared before: the test has threads,
// so that only async-signal-safe calls are allowed there.
struct Launch {
  char* const* argv;
  char* const* environment;
  const char* directory;
  int input, output, error, failure;
  pid_t parent;
};

[[noreturn]] void becomeProgram(const Launch& launch) {
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  // A test under nohup must not hand on what it ignores.
  for (const int number : {SIGPIPE, SIGHUP, SIGINT, SIGTERM}) ::signal(number, SIG_DFL);
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != launch.parent) ::_exit(127);  // the test died before the line above
  if (::dup2(launch.input, STDIN_FILENO) >= 0 && ::dup2(launch.output, STDOUT_FILENO) >= 0 &&
      ::dup2(launch.error, STDERR_FILENO) >= 0 &&
      (launch.directory == nullptr || ::chdir(launch.directory) == 0)) {
    ::execvpe(launch.argv[0], launch.argv, launch.environment);
  }
  const int reason = errno;
  [[maybe_unused]] const ssize_t written = ::write(launch.failure, &reason, sizeof reason);
  ::_exit(127);
}

// The pipe closes by itself when exec succeeds; before that it carries the reason of a failure.
void throwIfNotStarted(const FileDescriptor& failure, pid_t child, const std::string& program) {
  int reason = 0;
  ssize_t count = 0;
  do count = ::read(failure.get(), &reason, sizeof reason);
  while (count < 0 && errno == EINTR);
  if (count == 0) return;
  ::waitpid(child, nullptr, 0);
  throw std::runtime_error("cannot run " + program + ": " + std::strerror(reason));
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

Process::Process(const Command& command) {
  if (command.argv.empty()) throw std::runtime_error("a command needs a program");
  std::vector<std::string> argv = command.argv;
  std::vector<std::string> assignments = asAssignments(command.environment);
  const std::vector<char*> argvPointers = pointersInto(argv);
  const std::vector<char*> environmentPointers = pointersInto(assignments);
  const FileDescriptor input(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  Pipe failure = makePipe();
  const std::string directory = command.workingDirectory.string();

  const Launch launch{argvPointers.data(),
                      environmentPointers.data(),
                      directory.empty() ? nullptr : directory.c_str(),
                      input.get(),
                      capture_.end(Stream::Output),
                      capture_.end(Stream::Error),
                      failure.writing.get(),
                      ::getpid()};
  pid_ = ::fork();
  if (pid_ < 0) throw std::runtime_error("cannot fork for " + argv.front());
  if (pid_ == 0) becomeProgram(launch);
  failure.writing.reset();
  throwIfNotStarted(failure.reading, pid_, argv.front());
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

void Process::signalGroup(int number) {
  ::kill(-pid_, number);
}

void Process::freeze() {
  signal(SIGSTOP);
  siginfo_t info{};
  if (!end_) ::waitid(P_PID, static_cast<id_t>(pid_), &info, WSTOPPED | WEXITED | WNOWAIT);
}

void Process::thaw() {
  signal(SIGCONT);
}

void Process::freezeGroup() {
  signalGroup(SIGSTOP);
  freeze();
}

void Process::thawGroup() {
  signalGroup(SIGCONT);
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
        line = capture_.takeLine(stream, wanted, hasEnded);
        return line || hasEnded;
      },
      patience);
  return line;
}

std::vector<std::string> Process::lines(const std::string& part, Stream stream) const {
  std::vector<std::string> found;
  std::istringstream all(capture_.text(stream));
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
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (!fact()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    if (meanwhile) meanwhile();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

}  // namespace harness
