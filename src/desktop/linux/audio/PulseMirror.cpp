#include "desktop/linux/audio/PulseMirror.h"

#include <pulse/error.h>
#include <pulse/operation.h>

#include <utility>

#include "desktop/linux/audio/AudioLog.h"

namespace linux_desktop {

namespace {

// An operation lives on in its context; the handle is of use only to cancel it.
void letRun(pa_operation* operation) {
  if (operation != nullptr) pa_operation_unref(operation);
}

const char* orEmpty(const char* text) {
  return text != nullptr ? text : "";
}

}  // namespace

PulseMirror::PulseMirror(Callbacks callbacks) : callbacks_(std::move(callbacks)) {}

void PulseMirror::follow(pa_context& context) {
  current_ = false;
  listed_.clear();
  constexpr auto kMask =
      static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SERVER | PA_SUBSCRIPTION_MASK_SINK);
  // Subscribed first, so that nothing that changes during the reading is missed.
  pa_context_set_subscribe_callback(&context, &PulseMirror::changed, this);
  letRun(pa_context_subscribe(&context, kMask, nullptr, nullptr));
  letRun(pa_context_get_server_info(&context, &PulseMirror::serverTold, this));
  letRun(pa_context_get_sink_info_list(&context, &PulseMirror::sinkListed, this));
}

void PulseMirror::changed(pa_context* context, pa_subscription_event_type_t event,
                          std::uint32_t index, void* self) {
  const auto facility = event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
  const auto type = event & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
  if (facility == PA_SUBSCRIPTION_EVENT_SERVER) {
    letRun(pa_context_get_server_info(context, &PulseMirror::serverTold, self));
  } else if (facility == PA_SUBSCRIPTION_EVENT_SINK && type == PA_SUBSCRIPTION_EVENT_REMOVE) {
    static_cast<PulseMirror*>(self)->removed(index);
  } else if (facility == PA_SUBSCRIPTION_EVENT_SINK) {
    letRun(pa_context_get_sink_info_by_index(context, index, &PulseMirror::sinkTold, self));
  }
}

void PulseMirror::serverTold(pa_context* /*context*/, const pa_server_info* info, void* self) {
  auto& mirror = *static_cast<PulseMirror*>(self);
  if (info != nullptr) {
    mirror.noteServer(*info);
  } else {
    mirror.callbacks_.unanswered();
  }
}

void PulseMirror::noteServer(const pa_server_info& info) {
  const std::string name = orEmpty(info.default_sink_name);
  if (name != sinks_.defaultName()) {
    qCInfo(audioLog, "the default output device is now \"%s\"", name.c_str());
  }
  sinks_.setServer(info.cookie, name);
}

void PulseMirror::sinkListed(pa_context* /*context*/, const pa_sink_info* info, int end,
                             void* self) {
  auto& mirror = *static_cast<PulseMirror*>(self);
  if (end < 0) return mirror.callbacks_.unanswered();
  if (end > 0) return mirror.completeListing();
  mirror.listed_.insert(info->index);
  mirror.put(*info);
}

void PulseMirror::completeListing() {
  sinks_.removeAllBut(std::exchange(listed_, {}));
  current_ = true;
  callbacks_.complete();
}

// A sink that vanished before its turn has an event of its own coming.
void PulseMirror::sinkTold(pa_context* context, const pa_sink_info* info, int end, void* self) {
  auto& mirror = *static_cast<PulseMirror*>(self);
  if (end < 0 && pa_context_errno(context) == PA_ERR_TIMEOUT) return mirror.callbacks_.unanswered();
  if (end == 0) mirror.put(*info);
}

void PulseMirror::put(const pa_sink_info& info) {
  sinks_.put(info.index, orEmpty(info.name), info.mute != 0);
}

void PulseMirror::removed(std::uint32_t index) {
  qCInfo(audioLog, "output device %u is gone", index);
  sinks_.remove(index);
  listed_.erase(index);
}

}  // namespace linux_desktop
