#include "desktop/applications/RoundTripCount.h"

#include <csignal>
#include <ctime>
#include <utility>

// The C library's own declarations would have it that poll only writes what it is given.
struct pollfd {
  int fd;
  short events;
  short revents;
};
extern "C" int ppoll(pollfd* descriptors, unsigned long count, const timespec* patience,
                     const sigset_t* mask);

namespace {

constexpr short kWritable = 4;  // POLLOUT

int counted = -1;
bool hasSent = false;
int roundTrips = 0;

}  // namespace

void countRoundTripsOf(xcb_connection_t* connection) {
  counted = xcb_get_file_descriptor(connection);
}

int takeRoundTripCount() {
  return std::exchange(roundTrips, 0);
}

/// Stands before the C library's own.
extern "C" int poll(pollfd* descriptors, unsigned long count, int timeout) {
  if (count == 1 && timeout != 0 && descriptors->fd == counted) {
    // xcb waits for room before it sends. Answers come in pieces: only what was sent since makes
    // waiting for them another round trip.
    const bool sends = (descriptors->events & kWritable) != 0;
    if (std::exchange(hasSent, sends) && !sends) ++roundTrips;
  }
  const timespec patience{timeout / 1000, timeout % 1000 * 1'000'000L};
  return ppoll(descriptors, count, timeout < 0 ? nullptr : &patience, nullptr);
}
