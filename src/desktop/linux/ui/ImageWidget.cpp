#include "desktop/linux/ui/ImageWidget.h"

#include <QPainter>
#include <cmath>
#include <utility>

#include "desktop/linux/ui/Theme.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {

ImageWidget::ImageWidget(std::shared_ptr<platform::NSImageView> view, QWidget* parent)
    : QWidget(parent), view_(std::move(view)) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  renderer_.setAspectRatioMode(Qt::KeepAspectRatio);
  viewDidChange(platform::ViewChange::Content);
}

void ImageWidget::viewDidChange(platform::ViewChange) {
  if (const auto& image = view_->image()) {
    const QByteArray svg(image->bytes().data(), static_cast<qsizetype>(image->bytes().size()));
    if (!renderer_.load(svg)) qCWarning(lcUi) << "cannot draw image" << image->name().c_str();
  }
  update();
}

QSize ImageWidget::sizeHint() const {
  return {static_cast<int>(std::ceil(view_->size().width)),
          static_cast<int>(std::ceil(view_->size().height))};
}

void ImageWidget::paintEvent(QPaintEvent*) {
  if (!view_->image() || !renderer_.isValid()) return;
  QImage picture(size() * devicePixelRatioF(), QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter drawing(&picture);
  renderer_.render(&drawing);
  if (const auto& tint = view_->contentTintColor()) {
    drawing.setCompositionMode(QPainter::CompositionMode_SourceIn);
    drawing.fillRect(picture.rect(), Theme(palette()).color(*tint));
  }
  drawing.end();
  QPainter(this).drawImage(rect(), picture);
}

}  // namespace linux_desktop
