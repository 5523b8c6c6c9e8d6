#include "platform/foundation/NSBundle.h"

#include "platform/Runtime.h"

namespace platform {

NSBundle& NSBundle::mainBundle() {
  return *Runtime::current().instance<NSBundle>();
}

std::string NSBundle::bundlePath() const {
  return Runtime::current().desktop().bundlePath;
}

void NSBundle::addResource(std::string fileName, std::string_view bytes) {
  resources_.insert_or_assign(std::move(fileName), bytes);
}

std::optional<std::string_view> NSBundle::resource(std::string_view name,
                                                   std::string_view type) const {
  const auto found = resources_.find(std::string(name) + "." + std::string(type));
  if (found == resources_.end()) return std::nullopt;
  return found->second;
}

std::string NSLocalizedString(std::string_view text) {
  const port::Texts* texts = Runtime::current().desktop().texts;
  return texts == nullptr ? std::string(text) : texts->localized(text);
}

std::string NSLocalizedFormat(std::string_view text, const std::string& argument) {
  std::string format = NSLocalizedString(text);
  const std::size_t place = format.find("%s");
  return place == std::string::npos ? format + argument : format.replace(place, 2, argument);
}

}  // namespace platform
