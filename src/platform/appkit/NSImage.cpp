#include "platform/appkit/NSImage.h"

#include <map>

#include "platform/Runtime.h"
#include "platform/foundation/NSBundle.h"

namespace platform {
namespace {

struct NamedImages {
  std::map<std::string, std::shared_ptr<NSImage>, std::less<>> images;
};

}  // namespace

NSImage::NSImage(std::string name, std::string_view bytes)
    : name_(std::move(name)), bytes_(bytes) {}

std::shared_ptr<NSImage> NSImage::initWithCGImage(CGImage capture, NSSize size) {
  auto image = std::make_shared<NSImage>("", "");
  const NSSize pixels{static_cast<double>(capture->pixelWidth()),
                      static_cast<double>(capture->pixelHeight())};
  image->size_ = size == NSSize{} ? pixels : size;
  image->capture_ = std::move(capture);
  return image;
}

std::shared_ptr<NSImage> NSImage::imageNamed(std::string_view name) {
  auto& images = Runtime::current().instance<NamedImages>()->images;
  if (const auto found = images.find(name); found != images.end()) return found->second;
  const auto bytes = NSBundle::mainBundle().resource(name, "svg");
  if (!bytes) return nullptr;
  return images.emplace(name, std::make_shared<NSImage>(std::string(name), *bytes)).first->second;
}

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
