#include "desktop/linux/x11/PictureFormats.h"

namespace linux_desktop {
namespace {

bool isEightBitsBlueLowest(const xcb_render_pictforminfo_t& format) {
  const xcb_render_directformat_t& direct = format.direct;
  return format.type == XCB_RENDER_PICT_TYPE_DIRECT && direct.red_shift == 16 &&
         direct.green_shift == 8 && direct.blue_shift == 0 && direct.red_mask == 0xff &&
         direct.green_mask == 0xff && direct.blue_mask == 0xff;
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
    if (isEightBitsBlueLowest(*format.data)) formats.emplace(format.data->depth, format.data->id);
  }
  return formats;
}

}  // namespace linux_desktop
