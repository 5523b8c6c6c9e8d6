#pragma once

#include <cstdlib>
#include <memory>

namespace linux_desktop {

struct FreeXcbReply {
  void operator()(void* reply) const { std::free(reply); }
};

/// A reply of the X server, which xcb hands over to its caller to free.
template <class T>
using XcbReply = std::unique_ptr<T, FreeXcbReply>;

}  // namespace linux_desktop
