#include "platform/foundation/NSUUID.h"

#include <random>

namespace platform {

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
