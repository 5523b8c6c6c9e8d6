// Preloaded into a program whose requests are to be counted: stands before xcb's own functions.

#include "bench/counts/XCounts.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/uio.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <array>
#include <cstdlib>

namespace {

bench::XCounts& counts() {
  static bench::XCounts& shared = *[] {
    static bench::XCounts nobodyCounts{};
    const char* name = std::getenv(bench::XCounts::kFileVariable);
    const int file = name == nullptr ? -1 : ::open(name, O_RDWR | O_CLOEXEC);
    if (file < 0) return &nobodyCounts;
    void* memory =
        ::mmap(nullptr, sizeof(bench::XCounts), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    return memory == MAP_FAILED ? &nobodyCounts : static_cast<bench::XCounts*>(memory);
  }();
  return shared;
}

template <class Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

/// Whether something was sent on a connection since somebody last waited on it.
std::atomic<bool>& sent(xcb_connection_t* connection) {
  struct Known {
    std::atomic<xcb_connection_t*> connection;
    std::atomic<bool> sent;
  };
  static std::array<Known, 16> known{};
  for (Known& each : known) {
    xcb_connection_t* nobody = nullptr;
    if (each.connection == connection ||
        each.connection.compare_exchange_strong(nobody, connection) || nobody == connection)
      return each.sent;
  }
  static std::atomic<bool> others;
  return others;
}

void waited(xcb_connection_t* connection) {
  if (sent(connection).exchange(false)) ++counts().roundTrips;
}

}  // namespace

// Every request goes through this one, and every wait for an answer through one of the others.

extern "C" uint64_t xcb_send_request_with_fds64(xcb_connection_t* connection, int flags,
                                                iovec* parts, const xcb_protocol_request_t* request,
                                                unsigned int fdCount, int* fds) {
  static const auto own =
      next<decltype(&xcb_send_request_with_fds64)>("xcb_send_request_with_fds64");
  ++counts().requests;
  sent(connection) = true;
  return own(connection, flags, parts, request, fdCount, fds);
}

extern "C" void* xcb_wait_for_reply(xcb_connection_t* connection, unsigned int request,
                                    xcb_generic_error_t** error) {
  static const auto own = next<decltype(&xcb_wait_for_reply)>("xcb_wait_for_reply");
  waited(connection);
  return own(connection, request, error);
}

extern "C" void* xcb_wait_for_reply64(xcb_connection_t* connection, uint64_t request,
                                      xcb_generic_error_t** error) {
  static const auto own = next<decltype(&xcb_wait_for_reply64)>("xcb_wait_for_reply64");
  waited(connection);
  return own(connection, request, error);
}

extern "C" xcb_generic_error_t* xcb_request_check(xcb_connection_t* connection,
                                                  xcb_void_cookie_t cookie) {
  static const auto own = next<decltype(&xcb_request_check)>("xcb_request_check");
  waited(connection);
  return own(connection, cookie);
}
