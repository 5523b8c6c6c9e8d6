#include "desktop/linux/ui/FilePathWidget.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "desktop/linux/ui/Theme.h"

namespace linux_desktop {
namespace {

constexpr QSize kThumbnail(64, 40);
/// Read once, for the finest screen it may be moved to.
constexpr int kMostPixelsPerPoint = 2;
constexpr double kCornerRadius = 4;
constexpr int kGap = 10;
constexpr int kLetters = 42;

bool isPath(const QString& text) {
  return text.startsWith(QLatin1Char('/'));
}

}  // namespace

FilePathWidget::FilePathWidget(std::shared_ptr<platform::NSTextField> field, QWidget* parent)
    : QWidget(parent), field_(std::move(field)) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  viewDidChange(platform::ViewChange::Content);
  themeDidChange();
}

void FilePathWidget::viewDidChange(platform::ViewChange change) {
  if (!includes(change, platform::ViewChange::Content)) return;
  const QString path = text();
  thumbnail_ = {};
  loader_.cancel();
  setToolTip(isPath(path) ? path : QString());
  if (isPath(path)) {
    loader_.load(path, kThumbnail * kMostPixelsPerPoint, [this](const QImage& picture) {
      thumbnail_ = picture;
      update();
    });
  }
  update();
}

void FilePathWidget::themeDidChange() {
  setFont(fontFor(field_->textStyle(), QApplication::font(this)));
  updateGeometry();
  update();
}

QString FilePathWidget::text() const {
  return QString::fromStdString(field_->stringValue());
}

QString FilePathWidget::accessibleName() const {
  const QString label = ViewWidget::accessibleName();
  return label.isEmpty() ? text() : QStringLiteral("%1: %2").arg(label, text());
}

QSize FilePathWidget::sizeHint() const {
  return {kThumbnail.width() + kGap + kLetters * fontMetrics().averageCharWidth(),
          std::max(kThumbnail.height(), fontMetrics().height())};
}

QRect FilePathWidget::textArea() const {
  const QRect logical = rect().adjusted(kThumbnail.width() + kGap, 0, 0, 0);
  return QStyle::visualRect(layoutDirection(), rect(), logical);
}

QString FilePathWidget::shownText() const {
  return fontMetrics().elidedText(text(), Qt::ElideMiddle, textArea().width());
}

void FilePathWidget::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  const QRectF slot =
      QStyle::alignedRect(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter, kThumbnail, rect());
  QRectF picture = slot;
  if (!thumbnail_.isNull()) {
    picture.setSize(QSizeF(thumbnail_.size()).scaled(slot.size(), Qt::KeepAspectRatio));
    picture.moveCenter(slot.center());
  }
  const QRectF edge = picture.adjusted(0.5, 0.5, -0.5, -0.5);
  QPainterPath outline;
  outline.addRoundedRect(edge, kCornerRadius, kCornerRadius);
  painter.save();
  painter.setClipPath(outline);
  painter.drawImage(picture, thumbnail_);
  painter.restore();
  painter.setPen(QPen(theme.color(platform::NSSystemColor::Separator), 1,
                      thumbnail_.isNull() ? Qt::DashLine : Qt::SolidLine));
  painter.drawPath(outline);
  painter.setPen(theme.color(field_->textColor()));
  painter.drawText(textArea(), static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter), shownText());
}

}  // namespace linux_desktop
