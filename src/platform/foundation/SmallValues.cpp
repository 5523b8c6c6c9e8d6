#include "platform/foundation/SmallValues.h"

#include <ctime>
#include <random>

#include "platform/Runtime.h"

namespace platform {

NSDate NSDate::date() {
  return NSDate(Runtime::current().desktop().mainLoop.wallClock());
}

std::string NSDate::description() const {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time_);
  std::array<char, 64> text{};
  std::strftime(text.data(), text.size(), "%F %T +0000", std::gmtime(&seconds));
  return text.data();
}

NSUUID NSUUID::UUID() {
  std::random_device random;
  NSUUID uuid;
  for (std::uint32_t& word : uuid.words_) word = random();
  // Version 4 (random), variant 1.
  uuid.words_[1] = (uuid.words_[1] & 0xffff0fff) | 0x4000;
  uuid.words_[2] = (uuid.words_[2] & 0x3fffffff) | 0x80000000;
  return uuid;
}

}  // namespace platform
