#include "desktop/harness/VncMonitors.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "desktop/harness/FileDescriptor.h"

namespace harness {

namespace {

// Numbers of the RFB protocol, version 3.8, and of its extended desktop size.
constexpr std::uint8_t kSecurityNone = 1;
constexpr std::int32_t kRawEncoding = 0;
constexpr std::int32_t kDesktopSizeEncoding = -223;
constexpr std::int32_t kExtendedDesktopSizeEncoding = -308;
constexpr int kReasonThisClient = 1;

using Bytes = std::vector<std::uint8_t>;

void put8(Bytes& bytes, int value) {
  bytes.push_back(static_cast<std::uint8_t>(value));
}

void put16(Bytes& bytes, int value) {
  put8(bytes, (value >> 8) & 0xff);
  put8(bytes, value & 0xff);
}

void put32(Bytes& bytes, std::uint32_t value) {
  put16(bytes, static_cast<int>(value >> 16));
  put16(bytes, static_cast<int>(value & 0xffff));
}

/// One conversation with the server, in the protocol's own steps. Each read gives up after five
/// seconds.
class RfbClient {
 public:
  explicit RfbClient(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) throw std::runtime_error("RFB path too long");
    std::copy(path.begin(), path.end(), std::begin(address.sun_path));
    socket_ = FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const timeval patience{5, 0};
    ::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    // sockaddr_un is what the interface calls a sockaddr.
    if (::connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
      throw std::runtime_error("no RFB server at " + path);
  }

  void handshake() {
    constexpr std::string_view kVersion = "RFB 003.008\n";
    skip(kVersion.size());
    send(Bytes(kVersion.begin(), kVersion.end()));
    skip(read8());  // the security types on offer
    send({kSecurityNone});
    if (read32() != 0) throw std::runtime_error("the RFB server wants a password");
    send({1});  // shared
    skip(4);
    bytesPerPixel_ = read8() / 8U;
    skip(15);
    skip(read32());  // the desktop's name
    Bytes encodings{2, 0, 0, 3};
    for (const std::int32_t encoding :
         {kRawEncoding, kExtendedDesktopSizeEncoding, kDesktopSizeEncoding}) {
      put32(encodings, static_cast<std::uint32_t>(encoding));
    }
    send(encodings);
  }

  /// The ids of the present screens.
  std::vector<std::uint32_t> screens() {
    requestUpdate(false);
    while (!layout_) readMessage();
    return screens_;
  }

  void setLayout(const std::vector<Rect>& monitors, const std::vector<std::uint32_t>& ids) {
    int width = 0;
    int height = 0;
    for (const Rect& monitor : monitors) {
      width = std::max(width, monitor.right());
      height = std::max(height, monitor.bottom());
    }
    Bytes message{251, 0};
    put16(message, width);
    put16(message, height);
    put8(message, static_cast<int>(monitors.size()));
    put8(message, 0);
    for (std::size_t i = 0; i < monitors.size(); ++i) {
      put32(message, ids.at(i));
      const Rect& monitor = monitors.at(i);
      for (const int value : {monitor.x, monitor.y, monitor.width, monitor.height})
        put16(message, value);
      put32(message, 0);
    }
    send(message);
    requestUpdate(true);
    while (!answer_) readMessage();
    if (*answer_ != 0)
      throw std::runtime_error("the monitors were refused, status " + std::to_string(*answer_));
  }

 private:
  void requestUpdate(bool incremental) {
    send({3, static_cast<std::uint8_t>(incremental ? 1 : 0), 0, 0, 0, 0, 0, 1, 0, 1});
  }

  void readMessage() {
    switch (read8()) {
      case 0: {
        skip(1);
        for (unsigned left = read16(); left > 0; --left) readRectangle();
        break;
      }
      case 1:  // SetColourMapEntries
        skip(3);
        skip(std::size_t{6} * read16());
        break;
      case 2:  // Bell
        break;
      case 3:  // ServerCutText
        skip(3);
        skip(read32());
        break;
      default:
        throw std::runtime_error("unknown RFB message");
    }
  }

  void readRectangle() {
    const unsigned x = read16();
    const unsigned y = read16();
    const unsigned width = read16();
    const unsigned height = read16();
    const auto encoding = static_cast<std::int32_t>(read32());
    if (encoding == kRawEncoding) skip(std::size_t{width} * height * bytesPerPixel_);
    if (encoding != kExtendedDesktopSizeEncoding) return;
    layout_ = true;
    if (x == kReasonThisClient) answer_ = y;
    screens_.clear();
    const unsigned count = read8();
    skip(3);
    for (unsigned i = 0; i < count; ++i) {
      screens_.push_back(read32());
      skip(12);
    }
  }

  void send(const Bytes& bytes) {
    if (::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(bytes.size()))
      throw std::runtime_error("the RFB server does not read");
  }

  Bytes read(std::size_t count) {
    Bytes bytes(count);
    std::size_t have = 0;
    while (have < count) {
      const ssize_t got = ::recv(socket_.get(), bytes.data() + have, count - have, 0);
      if (got <= 0) throw std::runtime_error("the RFB server does not answer");
      have += static_cast<std::size_t>(got);
    }
    return bytes;
  }

  void skip(std::size_t count) { read(count); }
  unsigned read8() { return read(1).front(); }
  unsigned read16() {
    const unsigned high = read8();
    return high << 8U | read8();
  }
  std::uint32_t read32() {
    const std::uint32_t high = read16();
    return high << 16U | read16();
  }

  FileDescriptor socket_;
  std::size_t bytesPerPixel_ = 4;
  bool layout_ = false;
  std::vector<std::uint32_t> screens_;
  std::optional<unsigned> answer_;
};

}  // namespace

void setVncMonitors(const std::string& rfbSocket, const std::vector<Rect>& monitors) {
  RfbClient client(rfbSocket);
  client.handshake();
  std::vector<std::uint32_t> ids = client.screens();
  std::uint32_t invented = 1000;
  while (ids.size() < monitors.size()) {
    // It may have been invented for a monitor that is still there.
    if (std::ranges::find(ids, invented) == ids.end()) ids.push_back(invented);
    ++invented;
  }
  client.setLayout(monitors, ids);
}

}  // namespace harness
