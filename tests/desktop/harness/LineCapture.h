#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "desktop/linux/files/FileDescriptor.h"

namespace harness {

using linux_desktop::FileDescriptor;

enum class Stream { Output, Error };

/// Reads both output pipes of a child as they fill, so that a talkative child never blocks on a
/// full pipe, and keeps every line. Safe to call from any one thread.
class LineCapture {
 public:
  /// Takes the reading ends.
  LineCapture(FileDescriptor output, FileDescriptor error);
  ~LineCapture();
  LineCapture(const LineCapture&) = delete;
  LineCapture& operator=(const LineCapture&) = delete;

  /// The first line that contains a match of `pattern` after the line that the previous call for
  /// this stream returned; absent when none came until `deadline`, or the stream ended without one.
  [[nodiscard]] std::optional<std::string> waitForLine(
      Stream stream, const std::regex& pattern, std::chrono::steady_clock::time_point deadline);
  /// Everything read so far, whether or not waitForLine() has passed it.
  [[nodiscard]] std::string text(Stream stream) const;
  /// Reads what lies in the pipes and stops: for after the child's end. Descendants that still
  /// hold the pipes do not delay it.
  void finish();

 private:
  struct Channel {
    FileDescriptor pipe;
    std::string text;
    std::size_t cursor = 0;  // start of the first line that waitForLine() has not passed
    bool ended = false;
  };

  void readUntilToldToStop();
  // Both read until the pipe is empty; they return false at its end.
  bool drain(Channel& channel);
  void append(Channel& channel, const char* bytes, std::size_t count);
  static std::optional<std::string> takeMatch(Channel& channel, const std::regex& pattern);

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::array<Channel, 2> channels_;
  FileDescriptor stop_;
  std::thread reader_;  // last: it uses all of the above
};

}  // namespace harness
