#pragma once

#include <cstdlib>
#include <memory>

namespace linux_desktop {

struct FreeReply {
  void operator()(void* memory) const { std::free(memory); }
};

/// A reply, event or error of the X server, which xcb hands over to its caller to free.
template <class T>
using XReply = std::unique_ptr<T, FreeReply>;

}  // namespace linux_desktop
