#include "desktop/linux/process/SingleInstance.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
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

namespace fs = std::filesystem;

constexpr std::string_view kRequest = "show\n";
constexpr std::string_view kAnswer = "shown\n";
constexpr std::chrono::seconds kPatience(2);
constexpr int kWaiting = 32;  // callers that may queue while this process is busy

FileDescriptor newSocket() {
  return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

std::optional<sockaddr_un> addressOf(const fs::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string name = path.string();
  if (name.size() >= sizeof address.sun_path) {
    errno = ENAMETOOLONG;
    return std::nullopt;
  }
  std::memcpy(address.sun_path, name.data(), name.size());
  return address;
}

using SocketCall = int (*)(int, const sockaddr*, socklen_t);

bool call(SocketCall bindOrConnect, const FileDescriptor& socket, const fs::path& path) {
  const std::optional<sockaddr_un> address = addressOf(path);
  return address && bindOrConnect(socket.get(), reinterpret_cast<const sockaddr*>(&*address),
                                  sizeof *address) == 0;
}

FileDescriptor listeningAt(const fs::path& path) {
  FileDescriptor socket = newSocket();
  // Before the file is there, so that at no moment others may connect.
  ::fchmod(socket.get(), 0600);
  ::unlink(path.c_str());  // left by a killed holder of the lock that is ours now
  if (!call(::bind, socket, path) || ::listen(socket.get(), kWaiting) != 0) return {};
  // The sticky bit keeps clean-up services away from files in the runtime folder.
  ::chmod(path.c_str(), S_ISVTX | 0600);
  return socket;
}

bool sendLine(const FileDescriptor& socket, std::string_view line) {
  return ::send(socket.get(), line.data(), line.size(), MSG_NOSIGNAL) ==
         static_cast<ssize_t>(line.size());
}

enum class Reading { Open, Ended };

/// Adds what has arrived to `text`, up to what a request or an answer may have.
Reading readInto(std::string& text, const FileDescriptor& socket) {
  std::array<char, 16> piece{};
  const ssize_t count = ::recv(socket.get(), piece.data(), piece.size(), 0);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return Reading::Open;
  if (count > 0) text.append(piece.data(), static_cast<std::size_t>(count));
  return count > 0 && text.size() < piece.size() ? Reading::Open : Reading::Ended;
}

/// One that asks; hangs up on who makes no sense or says nothing, and is deleted then.
class Caller final : public QObject {
 public:
  Caller(FileDescriptor socket, const std::function<void()>& requested, QObject* parent)
      : QObject(parent),
        requested_(requested),
        socket_(std::move(socket)),
        arrivals_(socket_.get(), QSocketNotifier::Read) {
    connect(&arrivals_, &QSocketNotifier::activated, this, [this] { read(); });
    QTimer::singleShot(kPatience, this, [this] { hangUp(); });
  }

 private:
  void read() {
    const Reading reading = readInto(text_, socket_);
    // Answers before it shows: what is shown may be a dialog that runs a loop of its own. Who has
    // given up waiting asked all the same.
    if (text_ == kRequest) {
      sendLine(socket_, kAnswer);
      hangUp();
      requested_();
    } else if (reading == Reading::Ended || text_.ends_with('\n')) {
      hangUp();
    }
  }

  void hangUp() {
    arrivals_.setEnabled(false);
    socket_.reset();
    deleteLater();
  }

  const std::function<void()>& requested_;
  FileDescriptor socket_;
  QSocketNotifier arrivals_;
  std::string text_;
};

}  // namespace

ShowRequests::ShowRequests(fs::path socket, std::function<void()> requested)
    : path_(std::move(socket)), requested_(std::move(requested)), socket_(listeningAt(path_)) {
  if (!socket_.isOpen()) {
    qCWarning(lcProcess, "No socket %s (%s): a second start cannot show this one", path_.c_str(),
              std::strerror(errno));
    return;
  }
  arrivals_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
  QObject::connect(arrivals_.get(), &QSocketNotifier::activated, &callers_,
                   [this] { acceptAll(); });
}

ShowRequests::~ShowRequests() {
  if (socket_.isOpen()) ::unlink(path_.c_str());
}

void ShowRequests::acceptAll() {
  for (;;) {
    FileDescriptor caller(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (caller.isOpen()) {
      new Caller(std::move(caller), requested_, &callers_);
    } else if (errno == EAGAIN) {
      return;
    } else if (errno != EINTR && errno != ECONNABORTED) {
      // Who cannot be accepted stays in the queue and would be reported without end.
      qCWarning(lcProcess, "A further start cannot be listened to (%s), nor any after it",
                std::strerror(errno));
      return arrivals_->setEnabled(false);
    }
  }
}

bool ShowRequests::ask(const fs::path& socket, const QDeadlineTimer& deadline) {
  const FileDescriptor first = newSocket();
  if (!call(::connect, first, socket) || !sendLine(first, kRequest)) return false;
  std::string answer;
  while (answer != kAnswer) {
    pollfd arrival{first.get(), POLLIN, 0};
    const int left = static_cast<int>(deadline.remainingTime());
    const int ready = ::poll(&arrival, 1, left);
    if (ready == 0 || (ready < 0 && errno != EINTR)) return false;
    if (ready > 0 && readInto(answer, first) == Reading::Ended) return false;
  }
  return true;
}

namespace {

namespace fs = std::filesystem;

constexpr const char* kLockName = "calmdeck.lock";
constexpr const char* kSocketName = "calmdeck.socket";

}  // namespace

SingleInstance::SingleInstance(std::function<void()> showRequested, std::optional<fs::path> folder)
    : showRequested_(std::move(showRequested)), folder_(std::move(folder)) {}

SingleInstance::Claim SingleInstance::claim(std::chrono::milliseconds patience) {
  if (!folder_) {
    qCWarning(lcProcess, "No folder for the lock: a second start will not be noticed");
    return Claim::First;
  }
  const QDeadlineTimer deadline(patience);
  do {
    const Lock lock = takeLock();
    if (lock == Lock::Taken) requests_.emplace(*folder_ / kSocketName, showRequested_);
    if (lock != Lock::Held) return Claim::First;
    if (ShowRequests::ask(*folder_ / kSocketName, deadline)) return Claim::HandedOver;
    // The first one is about to listen or to end: both take moments, and neither can be waited for.
    QThread::msleep(10);
  } while (!deadline.hasExpired());
  qCWarning(lcProcess, "Calmdeck runs already but does not answer");
  return Claim::Unanswered;
}

// flock and not QLockFile: that one guesses from the text in the file whether its writer still
// lives, and an empty file after a crash, or a new host name, would lock the user out for ever.
SingleInstance::Lock SingleInstance::takeLock() {
  const fs::path file = *folder_ / kLockName;
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
