#include "desktop/linux/audio/PulseLoop.h"

#include "desktop/linux/audio/AudioLog.h"

namespace linux_desktop {

PulseLoop::PulseLoop() : loop_(pa_threaded_mainloop_new()) {
  if (!loop_ || pa_threaded_mainloop_start(loop_.get()) < 0) {
    qFatal("calmdeck.audio: cannot start the thread that talks to the sound server");
  }
  const std::lock_guard lock(*this);
  pa_threaded_mainloop_set_name(loop_.get(), "calmdeck-audio");
}

}  // namespace linux_desktop
