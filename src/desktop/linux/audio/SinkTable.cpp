#include "desktop/linux/audio/SinkTable.h"

#include <algorithm>
#include <utility>

namespace linux_desktop {

namespace {

template <class Predicate>
std::optional<Sink> firstWith(const std::map<std::uint32_t, Sink>& sinks, Predicate matches) {
  const auto found = std::ranges::find_if(sinks, [&](const auto& e) { return matches(e.second); });
  return found == sinks.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

void SinkTable::setServer(std::uint32_t cookie, std::string defaultName) {
  if (cookie_ != cookie) sinks_.clear();
  cookie_ = cookie;
  defaultName_ = std::move(defaultName);
}

void SinkTable::put(std::uint32_t index, std::string name, bool muted) {
  Sink& sink = sinks_[index];
  if (sink.id == 0) sink.id = nextId_++;
  sink.index = index;
  sink.name = std::move(name);
  sink.muted = muted;
}

void SinkTable::setMuted(std::uint32_t index, bool muted) {
  const auto found = sinks_.find(index);
  if (found != sinks_.end()) found->second.muted = muted;
}

void SinkTable::removeAllBut(const std::set<std::uint32_t>& indices) {
  std::erase_if(sinks_, [&](const auto& entry) { return !indices.contains(entry.first); });
}

std::optional<Sink> SinkTable::defaultSink() const {
  return firstWith(sinks_, [this](const Sink& sink) { return sink.name == defaultName_; });
}

std::optional<Sink> SinkTable::find(platform::AudioObjectID id) const {
  return firstWith(sinks_, [id](const Sink& sink) { return sink.id == id; });
}

}  // namespace linux_desktop
