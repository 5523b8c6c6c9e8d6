#include "desktop/linux/process/SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>
#include <cerrno>
#include <cstring>
#include <utility>

#include "desktop/linux/process/ProcessLog.h"

namespace linux_desktop {

namespace {

namespace fs = std::filesystem;

constexpr const char* kLockName = "calmdeck.lock";
constexpr const char* kSocketName = "calmdeck.socket";
constexpr const char* kRequest = "show\n";
constexpr const char* kAnswer = "shown\n";
constexpr int kLongestRequest = 64;

QString socketIn(const fs::path& folder) {
  return QFile::decodeName((folder / kSocketName).c_str());
}

int remaining(const QDeadlineTimer& deadline) {
  return static_cast<int>(deadline.remainingTime());
}

// False when the first one is just starting, just ending, or does not answer in time.
bool askToShow(const QString& socketName, const QDeadlineTimer& deadline) {
  QLocalSocket socket;
  socket.connectToServer(socketName);
  if (!socket.waitForConnected(remaining(deadline))) return false;
  socket.write(kRequest);
  while (!socket.canReadLine() && socket.waitForReadyRead(remaining(deadline))) {
  }
  return socket.readLine() == kAnswer;
}

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
    if (lock == Lock::Taken) listen();
    if (lock != Lock::Held) return Claim::First;
    if (askToShow(socketIn(*folder_), deadline)) return Claim::HandedOver;
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

void SingleInstance::listen() {
  const QString name = socketIn(*folder_);
  server_ = std::make_unique<QLocalServer>();
  server_->setSocketOptions(QLocalServer::UserAccessOption);
  QObject::connect(server_.get(), &QLocalServer::newConnection, server_.get(),
                   [this] { accept(); });
  QLocalServer::removeServer(name);  // left by a killed holder of the lock that is ours now
  if (!server_->listen(name)) {
    qCWarning(lcProcess, "No socket %s (%s): a second start cannot show this one",
              qUtf8Printable(name), qUtf8Printable(server_->errorString()));
    return;
  }
  ::chmod((*folder_ / kSocketName).c_str(), S_ISVTX | 0600);
}

void SingleInstance::accept() {
  while (QLocalSocket* caller = server_->nextPendingConnection()) {
    caller->setReadBufferSize(kLongestRequest);
    QObject::connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
    QObject::connect(caller, &QLocalSocket::readyRead, caller, [this, caller] { answer(*caller); });
    auto* patience = new QTimer(caller);
    QObject::connect(patience, &QTimer::timeout, caller, &QLocalSocket::abort);
    patience->start(std::chrono::seconds(2));
    answer(*caller);
  }
}

// Answers before it shows: what is shown may be a dialog that runs a loop of its own.
void SingleInstance::answer(QLocalSocket& caller) {
  if (!caller.canReadLine()) {
    if (caller.bytesAvailable() >= kLongestRequest) caller.abort();
    return;
  }
  if (caller.readLine() != kRequest) {
    caller.abort();
    return;
  }
  caller.write(kAnswer);
  caller.flush();
  caller.disconnectFromServer();
  showRequested_();
}

}  // namespace linux_desktop
