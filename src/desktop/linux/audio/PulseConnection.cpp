#include "desktop/linux/audio/PulseConnection.h"

#include <pulse/def.h>
#include <pulse/mainloop-api.h>
#include <pulse/subscribe.h>

#include <utility>

#include "desktop/linux/log/Log.h"

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

PulseLoop::PulseLoop() : loop_(pa_threaded_mainloop_new()) {
  // Before there is a thread: libpulse gives the name to the thread that calls.
  if (loop_) pa_threaded_mainloop_set_name(loop_.get(), "calmdeck-audio");
  if (!loop_ || pa_threaded_mainloop_start(loop_.get()) < 0) {
    qFatal("calmdeck.audio: cannot start the thread that talks to the sound server");
  }
}

void PulseConnection::Close::operator()(pa_context* context) const {
  pa_context_set_state_callback(context, nullptr, nullptr);
  pa_context_set_subscribe_callback(context, nullptr, nullptr);
  pa_context_disconnect(context);
  pa_context_unref(context);
}

PulseConnection::PulseConnection(PulseLoop& loop, Callbacks callbacks)
    : loop_(loop), callbacks_(std::move(callbacks)) {}

pa_context* PulseConnection::context() const {
  return state_ == State::Ready ? context_.get() : nullptr;
}

void PulseConnection::begin() {
  if (state_ != State::Down) return;
  state_ = State::Connecting;
  // Making a context reads files and may ask the X server; the main thread is not to wait for it.
  pa_mainloop_api_once(loop_.api(), &PulseConnection::open, this);
}

void PulseConnection::drop() {
  context_.reset();
  state_ = State::Down;
}

void PulseConnection::open(pa_mainloop_api* api, void* self) {
  auto& connection = *static_cast<PulseConnection*>(self);
  // Dropped again before its turn, or dropped and begun twice.
  if (connection.state_ != State::Connecting || connection.context_) return;
  connection.context_.reset(pa_context_new(api, "Calmdeck"));
  pa_context* const context = connection.context_.get();
  if (context == nullptr) return connection.fail(PA_ERR_INTERNAL);
  pa_context_set_state_callback(context, &PulseConnection::contextChanged, self);
  // May report the failure through the callback before it returns it.
  if (pa_context_connect(context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0 &&
      connection.state_ == State::Connecting) {
    connection.fail(pa_context_errno(context));
  }
}

void PulseConnection::contextChanged(pa_context* context, void* self) {
  auto& connection = *static_cast<PulseConnection*>(self);
  const pa_context_state_t state = pa_context_get_state(context);
  if (state == PA_CONTEXT_READY) {
    connection.state_ = State::Ready;
    connection.callbacks_.ready(*context);
  } else if (!PA_CONTEXT_IS_GOOD(state)) {
    connection.fail(pa_context_errno(context));
  }
}

void PulseConnection::fail(int error) {
  drop();
  callbacks_.lost(error);
}

}  // namespace linux_desktop
