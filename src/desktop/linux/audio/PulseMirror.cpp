#include "desktop/linux/audio/PulseMirror.h"

#include <pulse/def.h>
#include <pulse/error.h>
#include <pulse/operation.h>

#include <algorithm>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

template <class Predicate>
std::optional<Device> firstWith(const std::map<std::uint32_t, Device>& devices, Predicate matches) {
  const auto found =
      std::ranges::find_if(devices, [&](const auto& entry) { return matches(entry.second); });
  return found == devices.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

void DeviceTable::setServer(std::uint32_t cookie, std::string defaultName) {
  if (cookie_ != cookie) devices_.clear();
  cookie_ = cookie;
  defaultName_ = std::move(defaultName);
}

void DeviceTable::put(Device told) {
  Device& device = devices_[told.index];
  told.id = device.id != 0 ? device.id : nextId_++;
  device = std::move(told);
}

Device* DeviceTable::at(std::uint32_t index) {
  const auto found = devices_.find(index);
  return found == devices_.end() ? nullptr : &found->second;
}

void DeviceTable::removeAllBut(const std::set<std::uint32_t>& indices) {
  std::erase_if(devices_, [&](const auto& entry) { return !indices.contains(entry.first); });
}

std::optional<Device> DeviceTable::defaultDevice() const {
  return firstWith(devices_, [this](const Device& device) { return device.name == defaultName_; });
}

std::optional<Device> DeviceTable::find(platform::AudioObjectID id) const {
  return firstWith(devices_, [id](const Device& device) { return device.id == id; });
}

namespace {

// An operation lives on in its context; the handle is of use only to cancel it.
void letRun(pa_operation* operation) {
  if (operation != nullptr) pa_operation_unref(operation);
}

const char* orEmpty(const char* text) {
  return text != nullptr ? text : "";
}

const char* wordFor(DeviceKind kind) {
  return kind == DeviceKind::Sink ? "output" : "input";
}

DeviceKind kindOf(const pa_sink_info& /*info*/) {
  return DeviceKind::Sink;
}
DeviceKind kindOf(const pa_source_info& /*info*/) {
  return DeviceKind::Source;
}

bool isDevice(const pa_sink_info& /*info*/) {
  return true;
}
bool isDevice(const pa_source_info& info) {
  return info.monitor_of_sink == PA_INVALID_INDEX;
}

}  // namespace

PulseMirror::PulseMirror(Callbacks callbacks) : callbacks_(std::move(callbacks)) {}

void PulseMirror::follow(pa_context& context) {
  current_ = false;
  for (Half& half : halves_) {
    half.listed.clear();
    half.complete = false;
  }
  constexpr auto kMask = static_cast<pa_subscription_mask_t>(
      PA_SUBSCRIPTION_MASK_SERVER | PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE);
  // Subscribed first, so that nothing that changes during the reading is missed.
  pa_context_set_subscribe_callback(&context, &PulseMirror::changed, this);
  letRun(pa_context_subscribe(&context, kMask, nullptr, nullptr));
  letRun(pa_context_get_server_info(&context, &PulseMirror::serverTold, this));
  letRun(pa_context_get_sink_info_list(&context, &PulseMirror::listed<pa_sink_info>, this));
  letRun(pa_context_get_source_info_list(&context, &PulseMirror::listed<pa_source_info>, this));
}

void PulseMirror::changed(pa_context* context, pa_subscription_event_type_t event,
                          std::uint32_t index, void* self) {
  const auto facility = event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
  if (facility == PA_SUBSCRIPTION_EVENT_SERVER) {
    letRun(pa_context_get_server_info(context, &PulseMirror::serverTold, self));
    return;
  }
  const bool isSink = facility == PA_SUBSCRIPTION_EVENT_SINK;
  if ((event & PA_SUBSCRIPTION_EVENT_TYPE_MASK) == PA_SUBSCRIPTION_EVENT_REMOVE) {
    static_cast<PulseMirror*>(self)->removed(isSink ? DeviceKind::Sink : DeviceKind::Source, index);
  } else if (isSink) {
    letRun(pa_context_get_sink_info_by_index(context, index, &PulseMirror::told, self));
  } else {
    letRun(pa_context_get_source_info_by_index(context, index, &PulseMirror::told, self));
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
  setServer(DeviceKind::Sink, info.cookie, orEmpty(info.default_sink_name));
  setServer(DeviceKind::Source, info.cookie, orEmpty(info.default_source_name));
}

void PulseMirror::setServer(DeviceKind kind, std::uint32_t cookie, const char* defaultName) {
  DeviceTable& table = at(kind).table;
  if (table.defaultName() != defaultName) {
    qCInfo(lcAudio, "the default %s device is now \"%s\"", wordFor(kind), defaultName);
  }
  table.setServer(cookie, defaultName);
}

template <class Info>
void PulseMirror::listed(pa_context* /*context*/, const Info* info, int end, void* self) {
  auto& mirror = *static_cast<PulseMirror*>(self);
  if (end < 0) return mirror.callbacks_.unanswered();
  if (end > 0) return mirror.completeListing(mirror.at(kindOf(Info{})));
  if (isDevice(*info)) mirror.at(kindOf(*info)).listed.insert(info->index);
  mirror.put(*info);
}

void PulseMirror::completeListing(Half& half) {
  half.table.removeAllBut(std::exchange(half.listed, {}));
  half.complete = true;
  if (!std::ranges::all_of(halves_, &Half::complete)) return;
  current_ = true;
  callbacks_.complete();
}

// A device that vanished before its turn has an event of its own coming.
template <class Info>
void PulseMirror::told(pa_context* context, const Info* info, int end, void* self) {
  auto& mirror = *static_cast<PulseMirror*>(self);
  if (end < 0 && pa_context_errno(context) == PA_ERR_TIMEOUT) return mirror.callbacks_.unanswered();
  if (end == 0) mirror.put(*info);
}

template <class Info>
void PulseMirror::put(const Info& info) {
  if (!isDevice(info)) return;
  at(kindOf(info))
      .table.put({.index = info.index,
                  .name = orEmpty(info.name),
                  .muted = info.mute != 0,
                  .volume = info.volume});
}

void PulseMirror::removed(DeviceKind kind, std::uint32_t index) {
  qCInfo(lcAudio, "%s device %u is gone", wordFor(kind), index);
  at(kind).table.remove(index);
  at(kind).listed.erase(index);
}

}  // namespace linux_desktop
