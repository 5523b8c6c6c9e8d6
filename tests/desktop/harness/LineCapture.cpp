#include "desktop/harness/LineCapture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace harness {

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
  const std::string text = textFrom(channel, channel.cursor);
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t newline = text.find('\n', start);
    if (newline == std::string::npos && !hasEnded) return std::nullopt;
    std::string line = text.substr(start, newline - start);
    const std::size_t passed = line.size() + (newline == std::string::npos ? 0 : 1);
    start += passed;
    channel.cursor += passed;
    if (std::regex_search(line, pattern)) return line;
  }
  return std::nullopt;
}

}  // namespace harness
