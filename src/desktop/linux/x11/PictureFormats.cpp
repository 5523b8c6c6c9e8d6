#include "desktop/linux/x11/PictureFormats.h"

#include "desktop/linux/xserver/XDrawing.h"

namespace linux_desktop {
namespace {

bool liesAs(const PixelLayout& layout, const xcb_render_pictforminfo_t& format) {
  const xcb_render_directformat_t& direct = format.direct;
  const auto mask = [](std::uint16_t width, std::uint16_t shift) {
    return std::uint32_t{width} << shift;
  };
  return format.type == XCB_RENDER_PICT_TYPE_DIRECT &&
         layout == PixelLayout{mask(direct.red_mask, direct.red_shift),
                               mask(direct.green_mask, direct.green_shift),
                               mask(direct.blue_mask, direct.blue_shift)};
}

}  // namespace

xcb_render_pictformat_t PictureFormats::ofDepth(std::uint8_t depth) {
  if (!known_) known_ = read();
  const auto found = known_->find(depth);
  return found == known_->end() ? xcb_render_pictformat_t{XCB_NONE} : found->second;
}

PictureFormats::ByDepth PictureFormats::read() const {
  const XReply<xcb_render_query_pict_formats_reply_t> reply(xcb_render_query_pict_formats_reply(
      server_.get(), xcb_render_query_pict_formats(server_.get()), nullptr));
  ByDepth formats;
  if (!reply) return formats;
  auto format = xcb_render_query_pict_formats_formats_iterator(reply.get());
  for (; format.rem > 0; xcb_render_pictforminfo_next(&format)) {
    const xcb_render_pictforminfo_t& info = *format.data;
    if (liesAs(PixelLayout::ofDepth(server_, info.depth), info))
      formats.emplace(info.depth, info.id);
  }
  return formats;
}

}  // namespace linux_desktop
