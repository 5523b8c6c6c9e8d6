#include "desktop/linux/audio/SocketWatch.h"

#include <chrono>
#include <utility>

namespace linux_desktop {
namespace {

// A starting server binds its socket, which makes it appear, and listens on it a moment later.
constexpr std::chrono::milliseconds kFromBindToListen{100};

QString socketOfUser() {
  const QString own = qEnvironmentVariable("PULSE_RUNTIME_PATH");
  const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  if (!own.isEmpty()) return own + QStringLiteral("/native");
  return runtime.isEmpty() ? QString() : runtime + QStringLiteral("/pulse/native");
}

}  // namespace

SocketWatch::SocketWatch(std::function<void()> appeared)
    : socket_(socketOfUser()), settle_(kFromBindToListen, std::move(appeared)) {}

void SocketWatch::start() {
  if (watch_ || socket_.isEmpty()) return;
  watch_ = std::make_unique<FileWatch>(QStringList(socket_), [this] { look(); });
  // After the watch stands, so that nothing slips in between.
  look();
}

void SocketWatch::stop() {
  watch_.reset();
  settle_.stop();
}

void SocketWatch::look() {
  const QDateTime now = present();
  if (now.isValid() && now != tried_) settle_.start();
}

}  // namespace linux_desktop
