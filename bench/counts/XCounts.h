#pragma once

#include <atomic>
#include <cstdint>

namespace bench {

/// What a counted program has asked of X servers so far. Lies in a file that is shared with who
/// counts; the environment variable names it.
struct XCounts {
  static constexpr const char* kFileVariable = "CALMDECK_BENCH_X_COUNTS";

  std::atomic<std::uint64_t> requests;
  /// Waits for an answer after something was sent; each costs a turn to the server and back.
  std::atomic<std::uint64_t> roundTrips;
};
static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

}  // namespace bench
