#pragma once

#include <sys/types.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "desktop/linux/files/FileDescriptor.h"

namespace harness {

using linux_desktop::FileDescriptor;

using Environment = std::map<std::string, std::string>;

/// A copy of the test's own environment, but with English and UTF-8 as the language: programs
/// translate what they say, and Qt complains of another encoding.
[[nodiscard]] Environment ownEnvironment();

/// How long a test waits for a fact before it gives up; generous, for a loaded machine under a
/// sanitizer. Nothing in a passing test takes this long.
inline constexpr std::chrono::milliseconds kPatience{20'000};

/// How a child ended: by exit (signal is 0) or by a signal (code is -1).
struct ProcessEnd {
  int code = -1;
  int signal = 0;
  bool operator==(const ProcessEnd&) const = default;
};

/// What to start. The program is looked up in PATH when its name has no slash; no shell is
/// involved. Standard input is /dev/null.
struct Command {
  std::vector<std::string> argv;
  Environment environment = ownEnvironment();
  std::filesystem::path workingDirectory = {};  // empty: the test's own
};

enum class Stream { Output, Error };

/// Keeps every line that a child writes, in files without a name, so that a talkative child never
/// blocks on a full pipe and nobody has to read along.
class LineCapture {
 public:
  LineCapture();

  /// What the child is to write to.
  [[nodiscard]] int end(Stream stream) const { return channel(stream).file.get(); }
  /// The first line written so far that contains a match of `pattern`, behind the one that the
  /// previous call for this stream returned. The last line counts without its newline when
  /// `hasEnded`.
  [[nodiscard]] std::optional<std::string> takeLine(Stream stream, const std::regex& pattern,
                                                    bool hasEnded);
  /// Everything written so far, whether or not takeLine() has passed it.
  [[nodiscard]] std::string text(Stream stream) const { return textFrom(channel(stream), 0); }

 private:
  struct Channel {
    FileDescriptor file;
    std::size_t cursor = 0;  // start of the first line that takeLine() has not passed
  };

  [[nodiscard]] const Channel& channel(Stream stream) const {
    return channels_.at(static_cast<std::size_t>(stream));
  }
  [[nodiscard]] static std::string textFrom(const Channel& channel, std::size_t start);

  std::array<Channel, 2> channels_;
};

/// A child process with both of its output streams captured.
///
/// The child leads a process group of its own and dies with the test, however that ends. The
/// destructor ends the whole group: SIGTERM (and SIGCONT, should it be stopped), a second of grace,
/// then SIGKILL. Descendants in the group get SIGKILL once the child's end is seen. Use from one
/// thread, the one that started it.
class Process {
 public:
  /// Returns once the program runs; throws std::runtime_error, naming it, when it cannot be run.
  explicit Process(const Command& command);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  [[nodiscard]] pid_t pid() const { return pid_; }
  [[nodiscard]] bool running();

  /// Sends `number` to the child itself; does nothing after its end has been seen.
  void signal(int number);
  /// Stops the whole group, since programs run parts of themselves in further processes, and
  /// returns when the child has stopped, or has died instead.
  void freeze();
  void thaw() { signalGroup(SIGCONT); }
  /// SIGKILL to the whole group, and waits for the child's end.
  void kill();
  /// SIGTERM to the whole group, SIGKILL when it has not ended after `grace`.
  ProcessEnd terminate(std::chrono::milliseconds grace = std::chrono::seconds(1));

  /// Absent when the child still runs after `patience`.
  std::optional<ProcessEnd> waitForExit(std::chrono::milliseconds patience = kPatience);

  /// The next line of `stream` in which the ECMAScript `pattern` matches; each call goes on behind
  /// the line that the one before returned. Absent when the time or the child ends first.
  std::optional<std::string> waitForLine(const std::string& pattern,
                                         std::chrono::milliseconds patience = kPatience,
                                         Stream stream = Stream::Output);

  /// The same on standard error.
  [[nodiscard]] bool complains(const std::string& pattern) {
    return waitForLine(pattern, kPatience, Stream::Error).has_value();
  }

  /// The lines written so far that hold `part`.
  [[nodiscard]] std::vector<std::string> lines(const std::string& part,
                                               Stream stream = Stream::Output) const;
  /// Everything written so far.
  [[nodiscard]] std::string output() const { return capture_->text(Stream::Output); }
  [[nodiscard]] std::string errorOutput() const { return capture_->text(Stream::Error); }
  /// The same, also when this is gone.
  [[nodiscard]] std::shared_ptr<const LineCapture> record() const { return capture_; }

 private:
  void signalGroup(int number) const {
    if (!end_) ::kill(-pid_, number);
  }
  void reap();

  pid_t pid_ = -1;
  FileDescriptor pidDescriptor_;
  std::shared_ptr<LineCapture> capture_ = std::make_shared<LineCapture>();
  std::optional<ProcessEnd> end_;
};

/// What a program that ran to its end left behind.
struct RunResult {
  ProcessEnd end;
  std::string output;
  std::string errorOutput;
  [[nodiscard]] bool succeeded() const { return end == ProcessEnd{0, 0}; }
};

/// Runs a program to its end. Throws std::runtime_error when it cannot be run or is still running
/// after kPatience.
[[nodiscard]] RunResult runToEnd(const Command& command);

/// Waits until `fact` holds, for facts that announce themselves to nobody; false when it still does
/// not after `patience`. `meanwhile` runs between two looks: give a turn of the event loop where
/// the fact needs one.
bool until(const std::function<bool()>& fact, std::chrono::milliseconds patience = kPatience,
           const std::function<void()>& meanwhile = {});

}  // namespace harness
