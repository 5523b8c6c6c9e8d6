#include "bench/MuteWatch.h"

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

void MuteWatch::StopLoop::operator()(pa_threaded_mainloop* loop) const {
  pa_threaded_mainloop_free(loop);
}

void MuteWatch::Disconnect::operator()(pa_context* context) const {
  pa_context_disconnect(context);
  pa_context_unref(context);
}

/// What the sound server offers for a kind of device.
struct MuteWatch::Calls {
  pa_subscription_mask_t changes;
  pa_operation* (*ask)(pa_context* context, const char* name, MuteWatch* watch);
  pa_operation* (*mute)(pa_context* context, const char* name, int muted);
};

const MuteWatch::Calls& MuteWatch::calls() const {
  static constexpr Calls kSink{PA_SUBSCRIPTION_MASK_SINK,
                               [](pa_context* context, const char* name, MuteWatch* watch) {
                                 return pa_context_get_sink_info_by_name(
                                     context, name,
                                     [](pa_context*, const pa_sink_info* info, int, void* self) {
                                       if (info != nullptr)
                                         static_cast<MuteWatch*>(self)->saw(info->mute != 0);
                                     },
                                     watch);
                               },
                               [](pa_context* context, const char* name, int muted) {
                                 return pa_context_set_sink_mute_by_name(context, name, muted,
                                                                         nullptr, nullptr);
                               }};
  static constexpr Calls kSource{
      PA_SUBSCRIPTION_MASK_SOURCE,
      [](pa_context* context, const char* name, MuteWatch* watch) {
        return pa_context_get_source_info_by_name(
            context, name,
            [](pa_context*, const pa_source_info* info, int, void* self) {
              if (info != nullptr) static_cast<MuteWatch*>(self)->saw(info->mute != 0);
            },
            watch);
      },
      [](pa_context* context, const char* name, int muted) {
        return pa_context_set_source_mute_by_name(context, name, muted, nullptr, nullptr);
      }};
  return device_ == Device::Sink ? kSink : kSource;
}

MuteWatch::MuteWatch(std::string name, Device device)
    : name_(std::move(name)), device_(device), loop_(pa_threaded_mainloop_new()) {
  context_.reset(pa_context_new(pa_threaded_mainloop_get_api(loop_.get()), "calmdeck-bench"));
  pa_context_set_state_callback(
      context_.get(),
      [](pa_context* context, void* self) {
        if (pa_context_get_state(context) != PA_CONTEXT_READY) return;
        auto* watch = static_cast<MuteWatch*>(self);
        forget(pa_context_subscribe(context, watch->calls().changes, nullptr, nullptr));
        watch->ask();
      },
      this);
  pa_context_set_subscribe_callback(
      context_.get(),
      [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
        static_cast<MuteWatch*>(self)->ask();
      },
      this);
  pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
  pa_threaded_mainloop_start(loop_.get());
  std::unique_lock lock(access_);
  if (!changed_.wait_for(lock, kPatience, [this] { return known_; }))
    throw std::runtime_error("the sound server does not tell of " + name_);
}

MuteWatch::~MuteWatch() {
  pa_threaded_mainloop_stop(loop_.get());
}

void MuteWatch::ask() {
  forget(calls().ask(context_.get(), name_.c_str(), this));
}

void MuteWatch::saw(bool muted) {
  const std::lock_guard lock(access_);
  if (known_ && muted == muted_) return;
  known_ = true;
  muted_ = muted;
  since_ = Clock::now();
  changed_.notify_all();
}

bool MuteWatch::muted() const {
  const std::lock_guard lock(access_);
  return muted_;
}

void MuteWatch::request(bool muted) {
  const LoopLock lock(loop_.get());
  forget(calls().mute(context_.get(), name_.c_str(), muted ? 1 : 0));
}

Clock::time_point MuteWatch::await(bool muted) {
  std::unique_lock lock(access_);
  if (!changed_.wait_for(lock, kPatience, [&] { return muted_ == muted; }))
    throw std::runtime_error(name_ + (muted ? " is not muted" : " stays muted"));
  return since_;
}

}  // namespace bench
