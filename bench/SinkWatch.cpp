#include "bench/SinkWatch.h"

#include <pulse/pulseaudio.h>

#include <stdexcept>
#include <utility>

namespace bench {

using namespace std::chrono_literals;

namespace {

constexpr auto kPatience = 20s;

/// Calls come from the loop's own thread, but for those under this lock.
class LoopLock {
 public:
  explicit LoopLock(pa_threaded_mainloop* loop) : loop_(loop) { pa_threaded_mainloop_lock(loop_); }
  ~LoopLock() { pa_threaded_mainloop_unlock(loop_); }
  LoopLock(const LoopLock&) = delete;
  LoopLock& operator=(const LoopLock&) = delete;

 private:
  pa_threaded_mainloop* loop_;
};

void forget(pa_operation* operation) {
  if (operation != nullptr) pa_operation_unref(operation);
}

}  // namespace

void SinkWatch::StopLoop::operator()(pa_threaded_mainloop* loop) const {
  pa_threaded_mainloop_free(loop);
}

void SinkWatch::Disconnect::operator()(pa_context* context) const {
  pa_context_disconnect(context);
  pa_context_unref(context);
}

SinkWatch::SinkWatch(std::string sink) : sink_(std::move(sink)), loop_(pa_threaded_mainloop_new()) {
  context_.reset(pa_context_new(pa_threaded_mainloop_get_api(loop_.get()), "calmdeck-bench"));
  pa_context_set_state_callback(
      context_.get(),
      [](pa_context* context, void* self) {
        if (pa_context_get_state(context) != PA_CONTEXT_READY) return;
        forget(pa_context_subscribe(context, PA_SUBSCRIPTION_MASK_SINK, nullptr, nullptr));
        static_cast<SinkWatch*>(self)->ask();
      },
      this);
  pa_context_set_subscribe_callback(
      context_.get(),
      [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
        static_cast<SinkWatch*>(self)->ask();
      },
      this);
  pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
  pa_threaded_mainloop_start(loop_.get());
  std::unique_lock lock(access_);
  if (!changed_.wait_for(lock, kPatience, [this] { return known_; }))
    throw std::runtime_error("the sound server does not tell of the sink " + sink_);
}

SinkWatch::~SinkWatch() {
  pa_threaded_mainloop_stop(loop_.get());
}

void SinkWatch::ask() {
  forget(pa_context_get_sink_info_by_name(
      context_.get(), sink_.c_str(),
      [](pa_context*, const pa_sink_info* info, int, void* self) {
        if (info != nullptr) static_cast<SinkWatch*>(self)->saw(info->mute != 0);
      },
      this));
}

void SinkWatch::saw(bool muted) {
  const std::lock_guard lock(access_);
  if (known_ && muted == muted_) return;
  known_ = true;
  muted_ = muted;
  since_ = Clock::now();
  changed_.notify_all();
}

bool SinkWatch::muted() const {
  const std::lock_guard lock(access_);
  return muted_;
}

void SinkWatch::request(bool muted) {
  const LoopLock lock(loop_.get());
  forget(pa_context_set_sink_mute_by_name(context_.get(), sink_.c_str(), muted ? 1 : 0, nullptr,
                                          nullptr));
}

Clock::time_point SinkWatch::await(bool muted) {
  std::unique_lock lock(access_);
  if (!changed_.wait_for(lock, kPatience, [&] { return muted_ == muted; }))
    throw std::runtime_error("the sink " + sink_ + (muted ? " is not muted" : " stays muted"));
  return since_;
}

}  // namespace bench
