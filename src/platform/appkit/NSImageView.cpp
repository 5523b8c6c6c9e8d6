#include "platform/appkit/NSImageView.h"

namespace platform {

std::shared_ptr<NSImageView> NSImageView::initWithFrame(NSRect frame) {
  auto view = std::make_shared<NSImageView>();
  view->setFrame(frame);
  view->size_ = {frame.width, frame.height};
  return view;
}

bool NSImageView::initWithCoder(const NSCoder& coder) {
  const auto name = coder.attribute("image");
  if (name) image_ = NSImage::imageNamed(*name);
  if (coder.attribute("tint")) tint_.emplace();
  double side = size_.width;
  const bool isReadable = NSView::initWithCoder(coder) && (!name || image_) &&
                          coder.read("size", side) && (!tint_ || coder.read("tint", *tint_));
  size_ = {side, side};
  return isReadable;
}

void NSImageView::setImage(std::shared_ptr<NSImage> image) {
  image_ = std::move(image);
  didChange(ViewChange::Content);
}

}  // namespace platform
