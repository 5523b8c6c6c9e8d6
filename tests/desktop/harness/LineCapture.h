#pragma once

#include <array>
#include <optional>
#include <regex>
#include <string>

#include "desktop/linux/files/FileDescriptor.h"

namespace harness {

using linux_desktop::FileDescriptor;

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

}  // namespace harness
