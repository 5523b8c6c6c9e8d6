#include "desktop/linux/audio/PulseSound.h"

#include <QMetaObject>

namespace linux_desktop {
namespace {

void post(SocketWatch& watch, void (SocketWatch::*operation)()) {
  QMetaObject::invokeMethod(&watch, operation, Qt::QueuedConnection);
}

}  // namespace

PulseSound::PulseSound(std::chrono::milliseconds longestWait)
    : watch_([this] { server_.connect(); }),
      server_({.attempting = [this] { watch_.attempting(); },
               .up = [this] { post(watch_, &SocketWatch::stop); },
               .down = [this] { post(watch_, &SocketWatch::start); }},
              longestWait) {
  server_.connect();
}

}  // namespace linux_desktop
