#include "desktop/harness/LineCapture.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <cerrno>
#include <system_error>

namespace harness {

namespace {

FileDescriptor nonBlocking(FileDescriptor pipe) {
  ::fcntl(pipe.get(), F_SETFL, O_NONBLOCK);
  return pipe;
}

}  // namespace

LineCapture::LineCapture(FileDescriptor output, FileDescriptor error)
    : stop_(::eventfd(0, EFD_CLOEXEC)) {
  if (stop_.get() < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
  channels_[0].pipe = nonBlocking(std::move(output));
  channels_[1].pipe = nonBlocking(std::move(error));
  reader_ = std::thread([this] { readUntilToldToStop(); });
}

LineCapture::~LineCapture() {
  finish();
}

void LineCapture::finish() {
  if (!reader_.joinable()) return;
  ::eventfd_write(stop_.get(), 1);
  reader_.join();
}

std::string LineCapture::text(Stream stream) const {
  const std::lock_guard lock(mutex_);
  return channels_.at(static_cast<std::size_t>(stream)).text;
}

std::optional<std::string> LineCapture::waitForLine(
    Stream stream, const std::regex& pattern, std::chrono::steady_clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  Channel& channel = channels_.at(static_cast<std::size_t>(stream));
  std::optional<std::string> line;
  changed_.wait_until(lock, deadline, [&] {
    line = takeMatch(channel, pattern);
    return line || channel.ended;
  });
  return line;
}

std::optional<std::string> LineCapture::takeMatch(Channel& channel, const std::regex& pattern) {
  while (channel.cursor < channel.text.size()) {
    const std::size_t newline = channel.text.find('\n', channel.cursor);
    const bool complete = newline != std::string::npos;
    if (!complete && !channel.ended) return std::nullopt;
    const std::size_t end = complete ? newline : channel.text.size();
    std::string line = channel.text.substr(channel.cursor, end - channel.cursor);
    channel.cursor = complete ? end + 1 : end;
    if (std::regex_search(line, pattern)) return line;
  }
  return std::nullopt;
}

void LineCapture::readUntilToldToStop() {
  std::array<pollfd, 3> waits{pollfd{channels_[0].pipe.get(), POLLIN, 0},
                              pollfd{channels_[1].pipe.get(), POLLIN, 0},
                              pollfd{stop_.get(), POLLIN, 0}};
  bool stopping = false;
  while (!stopping) {
    if (::poll(waits.data(), waits.size(), -1) < 0 && errno != EINTR) break;
    stopping = (waits[2].revents & POLLIN) != 0;
    for (std::size_t i = 0; i < channels_.size(); ++i) {
      if (waits.at(i).fd >= 0 && !drain(channels_.at(i))) waits.at(i).fd = -1;
    }
  }
  const std::lock_guard lock(mutex_);
  for (Channel& channel : channels_) channel.ended = true;
  changed_.notify_all();
}

bool LineCapture::drain(Channel& channel) {
  std::array<char, 4096> buffer{};
  for (;;) {
    const ssize_t count = ::read(channel.pipe.get(), buffer.data(), buffer.size());
    if (count > 0) {
      append(channel, buffer.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
      const std::lock_guard lock(mutex_);
      channel.ended = true;
      changed_.notify_all();
      return false;
    } else if (errno == EAGAIN) {
      return true;
    }
  }
}

void LineCapture::append(Channel& channel, const char* bytes, std::size_t count) {
  const std::lock_guard lock(mutex_);
  channel.text.append(bytes, count);
  changed_.notify_all();
}

}  // namespace harness
