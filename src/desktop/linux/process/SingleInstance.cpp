#include "desktop/linux/process/SingleInstance.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QThread>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

namespace fs = std::filesystem;

// Not so after `sudo`, which may keep the variable of another user.
bool isOursAlone(const fs::path& folder) {
  struct stat status {};
  return folder.is_absolute() && ::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == ::geteuid() && (status.st_mode & 077U) == 0 &&
         ::euidaccess(folder.c_str(), W_OK | X_OK) == 0;
}

}  // namespace

std::optional<fs::path> runtimeFolder() {
  fs::path folder = qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString();
  if (isOursAlone(folder)) return folder;

  const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  QDir().mkpath(cache);
  folder = fs::path(cache.toStdString()) / "calmdeck";
  if (::mkdir(folder.c_str(), 0700) != 0) ::chmod(folder.c_str(), 0700);
  if (isOursAlone(folder)) return folder;
  return std::nullopt;
}

namespace {

constexpr std::string_view kRequest = "show\n";
constexpr std::string_view kAnswer = "shown\n";

FileDescriptor newSocket() {
  return FileDescriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

using SocketCall = int (*)(int, const sockaddr*, socklen_t);

bool call(SocketCall bindOrConnect, const FileDescriptor& socket, const fs::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string name = path.string();
  if (name.size() >= sizeof address.sun_path) {
    errno = ENAMETOOLONG;
    return false;
  }
  std::memcpy(address.sun_path, name.data(), name.size());
  return bindOrConnect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
         0;
}

FileDescriptor listeningAt(const fs::path& path) {
  FileDescriptor socket = newSocket();
  // Before the file is there, so that at no moment others may write to it.
  ::fchmod(socket.get(), 0600);
  ::unlink(path.c_str());  // left by a killed holder of the lock that is ours now
  if (!call(::bind, socket, path)) return {};
  // The sticky bit keeps clean-up services away from files in the runtime folder.
  ::chmod(path.c_str(), S_ISVTX | 0600);
  return socket;
}

/// Gives the socket a name that only the kernel knows, to which the answer can go.
bool giveName(const FileDescriptor& socket) {
  sockaddr address{};
  address.sa_family = AF_UNIX;
  return ::bind(socket.get(), &address, sizeof address.sa_family) == 0;
}

/// One message that has arrived, and who has sent it.
struct Message {
  explicit Message(const FileDescriptor& socket) {
    const ssize_t length = ::recvfrom(socket.get(), bytes.data(), bytes.size(), 0,
                                      reinterpret_cast<sockaddr*>(&sender), &senderLength);
    text = {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
  }
  std::array<char, 16> bytes{};
  std::string_view text;
  sockaddr_un sender{};
  socklen_t senderLength = sizeof sender;
};

}  // namespace

SingleInstance::SingleInstance(std::function<void()> showRequested, std::optional<fs::path> folder)
    : showRequested_(std::move(showRequested)), folder_(std::move(folder)) {}

SingleInstance::~SingleInstance() {
  if (socket_.isOpen()) ::unlink(socketFile().c_str());
}

fs::path SingleInstance::socketFile() const {
  return *folder_ / "calmdeck.socket";
}

void SingleInstance::listen() {
  socket_ = listeningAt(socketFile());
  if (!socket_.isOpen()) {
    qCWarning(lcProcess, "No socket %s (%s): a second start cannot show this one",
              socketFile().c_str(), std::strerror(errno));
    return;
  }
  arrivals_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
  QObject::connect(arrivals_.get(), &QSocketNotifier::activated, arrivals_.get(),
                   [this] { answer(); });
}

void SingleInstance::answer() {
  const Message message(socket_);
  if (message.text != kRequest) return;
  // Before it shows: what is shown may be a dialog that runs a loop of its own. Who has given up
  // waiting asked all the same.
  ::sendto(socket_.get(), kAnswer.data(), kAnswer.size(), 0,
           reinterpret_cast<const sockaddr*>(&message.sender), message.senderLength);
  showRequested_();
}

bool SingleInstance::ask(const QDeadlineTimer& deadline) const {
  const FileDescriptor caller = newSocket();
  if (!giveName(caller) || !call(::connect, caller, socketFile()) ||
      ::send(caller.get(), kRequest.data(), kRequest.size(), 0) < 0) {
    return false;
  }
  pollfd arrival{caller.get(), POLLIN, 0};
  int ready = -1;
  do {
    ready = ::poll(&arrival, 1, static_cast<int>(deadline.remainingTime()));
  } while (ready < 0 && errno == EINTR);
  return ready > 0 && Message(caller).text == kAnswer;
}

SingleInstance::Claim SingleInstance::claim(std::chrono::milliseconds patience) {
  if (!folder_) {
    qCWarning(lcProcess, "No folder for the lock: a second start will not be noticed");
    return Claim::First;
  }
  const QDeadlineTimer deadline(patience);
  do {
    const Lock lock = takeLock();
    if (lock == Lock::Taken) listen();
    if (lock != Lock::Held) return Claim::First;
    if (ask(deadline)) return Claim::HandedOver;
    // The first one is about to listen or to end: both take moments, and neither can be waited for.
    QThread::msleep(10);
  } while (!deadline.hasExpired());
  qCWarning(lcProcess, "Calmdeck runs already but does not answer");
  return Claim::Unanswered;
}

// flock and not QLockFile: that one guesses from the text in the file whether its writer still
// lives, and an empty file after a crash, or a new host name, would lock the user out for ever.
SingleInstance::Lock SingleInstance::takeLock() {
  const fs::path file = *folder_ / "calmdeck.lock";
  FileDescriptor lock(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (lock.isOpen() && ::flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
    // The sticky bit keeps clean-up services away from files in the runtime folder.
    ::fchmod(lock.get(), S_ISVTX | 0600);
    lock_ = std::move(lock);
    return Lock::Taken;
  }
  if (lock.isOpen() && errno == EWOULDBLOCK) return Lock::Held;
  qCWarning(lcProcess, "No lock on %s (%s): a second start will not be noticed", file.c_str(),
            std::strerror(errno));
  return Lock::Impossible;
}

}  // namespace linux_desktop
