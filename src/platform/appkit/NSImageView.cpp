#include "platform/appkit/NSImageView.h"

namespace platform {

std::shared_ptr<NSImageView> NSImageView::initWithCoder(const NSCoder& coder) {
  auto view = std::make_shared<NSImageView>();
  return view->decode(coder) ? view : nullptr;
}

std::shared_ptr<NSImageView> NSImageView::initWithFrame(NSRect frame) {
  auto view = std::make_shared<NSImageView>();
  view->setFrame(frame);
  view->size_ = {frame.width, frame.height};
  return view;
}

bool NSImageView::decode(const NSCoder& coder) {
  if (!NSView::decode(coder)) return false;
  if (const auto name = coder.attribute("image")) {
    image_ = NSImage::imageNamed(*name);
    if (!image_) return false;
  }
  if (const auto text = coder.attribute("size")) {
    const auto size = attributeFromText<double>(*text);
    if (!size) return false;
    size_ = {*size, *size};
  }
  if (const auto text = coder.attribute("tint")) {
    tint_ = attributeFromText<NSColor>(*text);
    if (!tint_) return false;
  }
  return true;
}

void NSImageView::setImage(std::shared_ptr<NSImage> image) {
  image_ = std::move(image);
  didChange(ViewChange::Content);
}

}  // namespace platform
