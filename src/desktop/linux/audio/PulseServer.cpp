#include "desktop/linux/audio/PulseServer.h"

#include <pulse/error.h>
#include <pulse/introspect.h>
#include <pulse/operation.h>

#include <QMetaObject>
#include <memory>
#include <mutex>
#include <tuple>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

struct Release {
  void operator()(pa_operation* operation) const { pa_operation_unref(operation); }
};
using Operation = std::unique_ptr<pa_operation, Release>;

constexpr const char* kSilence =
    "the sound server does not answer; not waiting for it until it does";

// A request is not sent when less than this is left of its deadline.
constexpr std::chrono::milliseconds kLeastForRequest{100};
// What PipeWire's front has to notice that we hung up; it takes less than a millisecond.
constexpr std::chrono::milliseconds kForHangUp{25};

// A request for which a change waits. Its callback can only run while the context lives.
struct Request {
  PulseLoop& loop;
  std::optional<int> error = std::nullopt;  // once answered; PA_OK is success

  static void answered(pa_context* context, int success, void* self) {
    auto& request = *static_cast<Request*>(self);
    request.error = success != 0 ? PA_OK : pa_context_errno(context);
    request.loop.wakeWaiter();
  }
};

PulseServer::Answer answerFor(int error) {
  switch (error) {
    case PA_OK:
      return PulseServer::Answer::Done;
    case PA_ERR_NOENTITY:
      return PulseServer::Answer::NoSuchDevice;
    default:
      qCWarning(lcAudio, "the sound server refused a change: %s", pa_strerror(error));
      return PulseServer::Answer::Refused;
  }
}

}  // namespace

PulseServer::PulseServer(std::chrono::milliseconds longestWait)
    : longestWait_(longestWait),
      watch_([this] { connect(); }),
      connection_(loop_, {.ready = [this](pa_context& context) { mirror_.follow(context); },
                          .lost = [this](int error) { lost(error); }}),
      mirror_({.complete = [this] { copyComplete(); },
               .unanswered =
                   [this] {
                     connection_.drop();
                     lost(PA_ERR_TIMEOUT);
                   }}) {
  connect();
}

void PulseServer::connect() {
  const std::lock_guard lock(loop_);
  begin();
}

bool PulseServer::reachable(Deadline deadline) {
  const std::lock_guard lock(loop_);
  return awaitCopy(deadline);
}

std::optional<Device> PulseServer::defaultDevice(DeviceKind kind) {
  const std::lock_guard lock(loop_);
  return mirror_.devices(kind).defaultDevice();
}

std::optional<Device> PulseServer::outputDevice() {
  const std::lock_guard lock(loop_);
  const DeviceTable& sinks = mirror_.devices(DeviceKind::Sink);
  std::optional<Device> sink = sinks.defaultDevice();
  // A name that is not listed is a change whose other half is on its way.
  if (!sink && (sinks.empty() || sinks.defaultName().empty())) {
    report(Trouble::NoDevice, "the sound server has no output device");
  } else if (sink && trouble_ == Trouble::NoDevice) {
    trouble_ = Trouble::None;
  }
  return sink;
}

std::optional<Device> PulseServer::sink(platform::AudioObjectID id) {
  const std::lock_guard lock(loop_);
  return mirror_.devices(DeviceKind::Sink).find(id);
}

PulseServer::Answer PulseServer::setMuted(DeviceKind kind, platform::AudioObjectID id, bool muted,
                                          Deadline deadline) {
  const auto send = kind == DeviceKind::Sink ? pa_context_set_sink_mute_by_index
                                             : pa_context_set_source_mute_by_index;
  const std::lock_guard lock(loop_);
  return request(kind, id,
                 {.send =
                      [&](std::uint32_t index, pa_context_success_cb_t answered, void* self) {
                        return send(connection_.context(), index, muted ? 1 : 0, answered, self);
                      },
                  .note = [&](Device& copy) { copy.muted = muted; }},
                 deadline);
}

PulseServer::Answer PulseServer::setSourceVolume(platform::AudioObjectID id,
                                                 const pa_cvolume& volume, Deadline deadline) {
  const std::lock_guard lock(loop_);
  return request(DeviceKind::Source, id,
                 {.send =
                      [&](std::uint32_t index, pa_context_success_cb_t answered, void* self) {
                        return pa_context_set_source_volume_by_index(connection_.context(), index,
                                                                     &volume, answered, self);
                      },
                  .note = [&](Device& copy) { copy.volume = volume; }},
                 deadline);
}

PulseServer::Answer PulseServer::request(DeviceKind kind, platform::AudioObjectID id,
                                         const Change& change, Deadline deadline) {
  if (!awaitCopy(deadline) || !awaitSignOfLife(deadline - kLeastForRequest)) {
    return Answer::NotRunning;
  }
  const std::optional<Device> device = mirror_.devices(kind).find(id);
  if (!device) return Answer::NoSuchDevice;
  const Answer answer = await(change, device->index, deadline);
  Device* copy = mirror_.device(kind, device->index);
  if (answer == Answer::Done && copy != nullptr) change.note(*copy);
  return answer;
}

void PulseServer::begin() {
  if (connection_.state() != PulseConnection::State::Down) return;
  watch_.attempting();
  connection_.begin();
}

bool PulseServer::awaitCopy(Deadline deadline) {
  if (mirror_.current()) return true;
  if (silent_) return false;
  begin();
  const bool settled = loop_.waitUntil(deadline, [this] {
    return mirror_.current() || connection_.state() == PulseConnection::State::Down;
  });
  if (!settled) fellSilent();
  return mirror_.current();
}

bool PulseServer::awaitSignOfLife(Deadline deadline) {
  if (silent_) return false;
  signOfLife_ = SignOfLife::Awaited;
  const Operation question(
      pa_context_get_server_info(connection_.context(), &PulseServer::signOfLife, this));
  const bool settled =
      loop_.waitUntil(deadline, [this] { return signOfLife_ != SignOfLife::Awaited; });
  if (!settled) fellSilent();
  return signOfLife_ == SignOfLife::Given;
}

PulseServer::Answer PulseServer::await(const Change& change, std::uint32_t index,
                                       Deadline deadline) {
  Request request{loop_};
  const Operation operation(change.send(index, &Request::answered, &request));
  const bool settled = loop_.waitUntil(
      deadline - kForHangUp, [&] { return request.error || connection_.context() == nullptr; });
  if (!settled) {
    fellSilent();
    hangUp();
    std::ignore = loop_.waitUntil(deadline, [] { return false; });
  }
  if (!request.error) return Answer::NotRunning;
  return answerFor(*request.error);
}

// So that what the server has not read yet is lost. The new connection tells when it answers.
void PulseServer::hangUp() {
  connection_.drop();
  mirror_.forget();
  signOfLife_ = SignOfLife::NotAsked;
  begin();
}

// Without `info` libpulse has given the question up: whoever comes next may ask anew.
void PulseServer::signOfLife(pa_context* /*context*/, const pa_server_info* info, void* self) {
  auto& server = *static_cast<PulseServer*>(self);
  server.signOfLife_ = info != nullptr ? SignOfLife::Given : SignOfLife::NotAsked;
  server.silent_ = false;
  if (info != nullptr) {
    server.mirror_.noteServer(*info);
    server.answersAgain();
  }
  server.loop_.wakeWaiter();
}

void PulseServer::copyComplete() {
  silent_ = false;
  answersAgain();
  noteMissing(false);
  loop_.wakeWaiter();
}

void PulseServer::lost(int error) {
  const bool hadOne = mirror_.current();
  mirror_.forget();
  signOfLife_ = SignOfLife::NotAsked;
  silent_ = false;
  if (error == PA_ERR_TIMEOUT) {
    report(Trouble::Silent, kSilence);
  } else {
    const std::string text = hadOne ? "the sound server is gone: " : "no sound server to talk to: ";
    report(Trouble::NoServer, text + pa_strerror(error));
  }
  noteMissing(true);
  loop_.wakeWaiter();
}

void PulseServer::noteMissing(bool isMissing) {
  const auto note = [this, isMissing] {
    isMissing ? watch_.start() : watch_.stop();
    const bool wasMissing = std::exchange(isMissing_, isMissing);
    if (wasMissing != isMissing && missingChanged_) missingChanged_();
  };
  QMetaObject::invokeMethod(&watch_, note, Qt::QueuedConnection);
}

void PulseServer::fellSilent() {
  silent_ = true;
  report(Trouble::Silent, kSilence);
}

void PulseServer::answersAgain() {
  if (trouble_ != Trouble::NoServer && trouble_ != Trouble::Silent) return;
  trouble_ = Trouble::None;
  qCInfo(lcAudio, "the sound server answers");
}

void PulseServer::report(Trouble trouble, const std::string& text) {
  if (trouble_ == trouble) return;
  trouble_ = trouble;
  qCWarning(lcAudio, "%s", text.c_str());
}

}  // namespace linux_desktop
