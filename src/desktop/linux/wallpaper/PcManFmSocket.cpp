#include "desktop/linux/wallpaper/PcManFmSocket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QFile>
#include <QStandardPaths>
#include <cstring>

namespace linux_desktop {
namespace {

constexpr int kPatience = 500;  // ms

class Connection {
 public:
  Connection() : descriptor_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
  ~Connection() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  [[nodiscard]] bool reach(const QByteArray& path) const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (descriptor_ < 0 || static_cast<std::size_t>(path.size()) >= sizeof address.sun_path)
      return false;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    // Fails at once, rather than waits, where too many others wait already.
    const timeval limit{0, suseconds_t{kPatience} * 1000};
    ::setsockopt(descriptor_, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    return ::connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  [[nodiscard]] bool send(const QByteArray& text) const {
    return ::send(descriptor_, text.constData(), static_cast<std::size_t>(text.size()),
                  MSG_NOSIGNAL) == text.size() &&
           ::shutdown(descriptor_, SHUT_WR) == 0;
  }
  /// The reader hangs up when it has read everything.
  [[nodiscard]] bool isRead() const {
    pollfd wait{descriptor_, POLLIN, 0};
    return ::poll(&wait, 1, kPatience) == 1;
  }

 private:
  int descriptor_;
};

}  // namespace

QString pcManFmSocket() {
  const QString display = qEnvironmentVariable("DISPLAY");
  const auto colon = display.lastIndexOf(QLatin1Char(':'));
  const QString number = display.mid(colon + 1).section(QLatin1Char('.'), 0, 0);
  QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
  if (folder.isEmpty()) {
    folder = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  }
  return QStringLiteral("%1/pcmanfm-socket-%2-%3")
      .arg(folder, display.left(std::max(colon, decltype(colon){0})), number);
}

std::optional<std::string> tellPcManFm(const QStringList& options) {
  // pcmanfm 1.3: a folder, the number of the screen, then its arguments, one a line.
  const QStringList lines = QStringList{QStringLiteral("/"), QStringLiteral("0")} + options;
  const Connection connection;
  if (!connection.reach(QFile::encodeName(pcManFmSocket()))) return "pcmanfm cannot be reached.";
  if (!connection.send(QFile::encodeName(lines.join(QLatin1Char('\n'))) + '\n') ||
      !connection.isRead()) {
    return "pcmanfm does not answer.";
  }
  return std::nullopt;
}

}  // namespace linux_desktop
