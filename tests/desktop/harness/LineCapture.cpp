#include "desktop/harness/LineCapture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>
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
  std::istringstream text(textFrom(channel, channel.cursor));
  for (std::string line; std::getline(text, line);) {
    const bool isWhole = !text.eof();
    if (!isWhole && !hasEnded) break;
    channel.cursor += line.size() + (isWhole ? 1 : 0);
    if (std::regex_search(line, pattern)) return line;
  }
  return std::nullopt;
}

}  // namespace harness
