#include "desktop/linux/audio/DeviceTable.h"

#include <algorithm>
#include <utility>

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

void DeviceTable::setMuted(std::uint32_t index, bool muted) {
  const auto found = devices_.find(index);
  if (found != devices_.end()) found->second.muted = muted;
}

void DeviceTable::setVolume(std::uint32_t index, const pa_cvolume& volume) {
  const auto found = devices_.find(index);
  if (found != devices_.end()) found->second.volume = volume;
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

}  // namespace linux_desktop
