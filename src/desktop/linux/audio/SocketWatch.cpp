#include "desktop/linux/audio/SocketWatch.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <chrono>
#include <utility>

namespace linux_desktop {
namespace {

// A starting server binds its socket, which makes it appear, and listens on it a moment later.
constexpr std::chrono::milliseconds kFromBindToListen{100};

QString socketDirectory() {
  QString own = qEnvironmentVariable("PULSE_RUNTIME_PATH");
  const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  if (!own.isEmpty()) return own;
  return runtime.isEmpty() ? QString() : runtime + QStringLiteral("/pulse");
}

// The directory itself may not exist before the first server of the login.
QString nearestExisting(const QString& directory) {
  const QDir parent = QFileInfo(directory).dir();
  if (QDir(directory).exists()) return directory;
  return parent.exists() ? parent.path() : QString();
}

}  // namespace

SocketWatch::SocketWatch(std::function<void()> appeared)
    : appeared_(std::move(appeared)), directory_(socketDirectory()) {
  settle_.setSingleShot(true);
  settle_.setInterval(kFromBindToListen);
  QObject::connect(&settle_, &QTimer::timeout, this, [this] { appeared_(); });
}

void SocketWatch::start() {
  if (watcher_ || directory_.isEmpty()) return;
  watcher_ = std::make_unique<QFileSystemWatcher>();
  QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, this, [this] { look(); });
  look();
}

void SocketWatch::stop() {
  watcher_.reset();
  settle_.stop();
}

void SocketWatch::look() {
  const QString wanted = nearestExisting(directory_);
  const QStringList watched = watcher_->directories();
  if (!wanted.isEmpty() && !watched.contains(wanted)) {
    if (!watched.isEmpty()) watcher_->removePaths(watched);
    watcher_->addPath(wanted);
  }
  // After the watch stands, so that nothing slips in between.
  const std::optional<Identity> now = present();
  if (now && now != tried_) settle_.start();
}

std::optional<SocketWatch::Identity> SocketWatch::present() const {
  if (directory_.isEmpty()) return std::nullopt;
  struct stat facts {};
  const QByteArray path = QFile::encodeName(directory_ + QStringLiteral("/native"));
  if (::stat(path.constData(), &facts) != 0 || !S_ISSOCK(facts.st_mode)) return std::nullopt;
  return Identity{facts.st_dev, facts.st_ino, facts.st_ctim.tv_sec, facts.st_ctim.tv_nsec};
}

}  // namespace linux_desktop
