#include "platform/foundation/SmallValues.h"

#include <cstdio>
#include <random>

#include "platform/Runtime.h"

namespace platform {

NSDate NSDate::date() {
  return NSDate(Runtime::current().desktop().mainLoop.wallClock());
}

std::string NSDate::description() const {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(time_);
  const auto day = std::chrono::floor<std::chrono::days>(seconds);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(seconds - day);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d +0000",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
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
