#include "desktop/linux/wallpaper/PcManFmSocket.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <QFile>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QTimer>
#include <chrono>
#include <memory>
#include <utility>

#include "desktop/linux/files/FileDescriptor.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

// A large photograph takes a busy machine three seconds.
constexpr std::chrono::seconds kLate{5};

sockaddr_un addressOf(const QByteArray& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  // A path that is too long is cut off, and nobody listens there.
  qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
  return address;
}

/// False: nobody listens, or too many others wait already.
bool send(const FileDescriptor& connection, const QByteArray& text) {
  const sockaddr_un address = addressOf(QFile::encodeName(pcManFmSocket()));
  return ::connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
             0 &&
         ::send(connection.get(), text.constData(), static_cast<std::size_t>(text.size()),
                MSG_NOSIGNAL) == text.size() &&
         ::shutdown(connection.get(), SHUT_WR) == 0;
}

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

std::optional<std::string> tellPcManFm(const QStringList& options, QObject& context,
                                       std::function<void()> read) {
  // pcmanfm 1.3: a folder, the number of the screen, then its arguments, one a line.
  const QStringList lines = QStringList{QStringLiteral("/"), QStringLiteral("0")} + options;
  auto connection = std::make_shared<FileDescriptor>(
      ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!send(*connection, QFile::encodeName(lines.join(QLatin1Char('\n'))) + '\n')) {
    return "pcmanfm cannot be reached.";
  }
  // The reader hangs up when it has read everything.
  auto* end = new QSocketNotifier(connection->get(), QSocketNotifier::Read, &context);
  QObject::connect(end, &QSocketNotifier::activated, end,
                   [end, connection, read = std::move(read)] {
                     end->setEnabled(false);
                     end->deleteLater();
                     read();
                   });
  QTimer::singleShot(kLate, end, [] {
    qCWarning(lcWallpaper, "pcmanfm does not answer; it gets its picture when it goes on.");
  });
  return std::nullopt;
}

}  // namespace linux_desktop
