#pragma once

#include <xcb/render.h>

#include <cstdint>
#include <map>
#include <optional>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// How the server's Render extension names the ways in which pixels lie. They never change while it
/// runs, and are asked for once.
class PictureFormats {
 public:
  /// `server` outlives this.
  explicit PictureFormats(XServer& server) : server_(server) {}

  /// The format in which pixels of that depth lie as PixelLayout says; none where the server has
  /// none.
  [[nodiscard]] xcb_render_pictformat_t ofDepth(std::uint8_t depth);

 private:
  using ByDepth = std::map<std::uint8_t, xcb_render_pictformat_t>;

  [[nodiscard]] ByDepth read() const;

  XServer& server_;
  std::optional<ByDepth> known_;
};

}  // namespace linux_desktop
