#include "desktop/linux/audio/PulseLoop.h"

#include "desktop/linux/log/Log.h"

namespace linux_desktop {

PulseLoop::PulseLoop() : loop_(pa_threaded_mainloop_new()) {
  // Before there is a thread: libpulse gives the name to the thread that calls.
  if (loop_) pa_threaded_mainloop_set_name(loop_.get(), "calmdeck-audio");
  if (!loop_ || pa_threaded_mainloop_start(loop_.get()) < 0) {
    qFatal("calmdeck.audio: cannot start the thread that talks to the sound server");
  }
}

}  // namespace linux_desktop
