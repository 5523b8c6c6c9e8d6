#include "desktop/linux/audio/PulseSound.h"

#include <QMetaObject>
#include <utility>

namespace linux_desktop {

PulseSound::PulseSound(std::chrono::milliseconds longestWait)
    : watch_([this] { server_.connect(); }),
      server_({.attempting = [this] { watch_.attempting(); },
               .up = [this] { serverCame(true); },
               .down = [this] { serverCame(false); }},
              longestWait) {
  server_.connect();
}

void PulseSound::serverCame(bool isThere) {
  QMetaObject::invokeMethod(
      &watch_, [this, isThere] { noteServer(isThere); }, Qt::QueuedConnection);
}

void PulseSound::noteServer(bool isThere) {
  isThere ? watch_.stop() : watch_.start();
  if (std::exchange(isServerMissing_, !isThere) == !isThere) return;
  if (changed_) changed_();
}

}  // namespace linux_desktop
