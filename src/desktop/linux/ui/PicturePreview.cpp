#include "desktop/linux/ui/PicturePreview.h"

#include <QFileInfo>
#include <QPainter>

namespace linux_desktop {
namespace {

constexpr QSize kPicture(220, 160);
constexpr int kMostPixelsPerPoint = 2;

}  // namespace

PicturePreview::PicturePreview(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
  setAccessibleName(QStringLiteral("Preview"));
}

QSize PicturePreview::sizeHint() const {
  return kPicture + QSize(0, 2 * fontMetrics().lineSpacing());
}

void PicturePreview::show(const QString& path) {
  picture_ = {};
  loader_.cancel();
  say({});
  if (!QFileInfo(path).isFile()) return;
  loader_.load(path, kPicture * kMostPixelsPerPoint,
               [this, name = QFileInfo(path).fileName()](const QImage& picture) {
                 picture_ = picture;
                 say(picture.isNull() ? QStringLiteral("No preview") : name);
               });
}

void PicturePreview::say(const QString& text) {
  text_ = text;
  setAccessibleDescription(text);
  update();
}

void PicturePreview::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  QRect frame(QPoint(), QSize(width(), kPicture.height()));
  if (!picture_.isNull()) {
    QRect shown(QPoint(), picture_.size().scaled(frame.size(), Qt::KeepAspectRatio));
    shown.moveCenter(frame.center());
    painter.drawImage(shown, picture_);
    frame.moveTop(shown.bottom() + 1);
  }
  frame.setHeight(2 * fontMetrics().lineSpacing());
  painter.drawText(frame, static_cast<int>(Qt::AlignHCenter | Qt::AlignVCenter),
                   fontMetrics().elidedText(text_, Qt::ElideMiddle, width()));
}

}  // namespace linux_desktop
