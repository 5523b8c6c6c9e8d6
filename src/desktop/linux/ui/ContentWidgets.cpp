#include "desktop/linux/ui/ContentWidgets.h"

#include <QAccessible>
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <algorithm>
#include <cmath>

#include "desktop/linux/log/Log.h"
#include "desktop/linux/ui/ShortcutText.h"
#include "desktop/linux/ui/Theme.h"

namespace linux_desktop {
namespace {

// Of boxes.
constexpr double kBoxRadius = 5;
constexpr double kThin = 1;
constexpr double kStrong = 2;
constexpr double kTint = 0.12;
constexpr int kMarginX = 10;
constexpr int kMarginY = 5;
/// The field is at least this wide in letters, so that it does not change with what it holds.
constexpr int kLeastLetters = 24;

/// Of a label, in letters.
constexpr int kLongestLine = 36;

// Of paths.
constexpr QSize kThumbnail(64, 40);
/// Read once, for the finest screen it may be moved to.
constexpr int kMostPixelsPerPoint = 2;
constexpr double kPictureRadius = 4;
constexpr int kGap = 10;
constexpr int kLetters = 42;

bool isPath(const QString& text) {
  return text.startsWith(QLatin1Char('/'));
}

/// What a reader says of a text that has a label.
QString labelled(const QString& label, const QString& text) {
  return QStringLiteral("%1: %2").arg(label, text);
}

}  // namespace

LabelWidget::LabelWidget(std::shared_ptr<platform::NSTextField> field, QWidget* parent)
    : WidgetOf(std::move(field), parent) {
  setTextFormat(Qt::PlainText);
  if (view_->content() == platform::NSTextContent::Copyable) {
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  }
  viewDidChange(platform::ViewChange::Content);
  themeDidChange();
}

void LabelWidget::viewDidChange(platform::ViewChange) {
  setText(readableShortcut(QString::fromStdString(view_->stringValue())));
  setToolTip(words() == text() ? QString() : words());
  arrange();
}

QString LabelWidget::words() const {
  return shortcutInWords(QString::fromStdString(view_->stringValue()));
}

int LabelWidget::longestLine() const {
  return kLongestLine * fontMetrics().averageCharWidth();
}

void LabelWidget::arrange() {
  // Every text begins on the same side, whatever it is written in.
  const bool isMirrored = layoutDirection() == Qt::RightToLeft;
  setAlignment((isMirrored ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute |
               Qt::AlignVCenter);
  setWordWrap(fontMetrics().horizontalAdvance(text()) > longestLine());
}

QSize LabelWidget::sizeHint() const {
  if (!wordWrap()) return QLabel::sizeHint();
  return {longestLine(), heightForWidth(longestLine())};
}

void LabelWidget::themeDidChange() {
  setFont(fontFor(view_->textStyle(), QApplication::font(this)));
  QPalette own = QApplication::palette(this);
  own.setColor(QPalette::WindowText, Theme(own).color(view_->textColor()));
  setPalette(own);
  arrange();
}

QString LabelWidget::accessibleName() const {
  const QString label = ViewWidget::accessibleName();
  if (label.isEmpty()) return words() == text() ? QString() : words();
  return text().isEmpty() ? label : labelled(label, words());
}

void SeparatorWidget::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), Theme(palette()).color(platform::NSSystemColor::Separator));
}

ImageWidget::ImageWidget(std::shared_ptr<platform::NSImageView> view, QWidget* parent)
    : WidgetOf(std::move(view), parent) {
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
  const QSizeF size = QSizeF(view_->size().width, view_->size().height) * textScale();
  return {static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height()))};
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

BoxWidget::BoxWidget(std::shared_ptr<platform::NSBox> box, PressObserver& presses, QWidget* parent)
    : WidgetOf(std::move(box), parent), presses_(presses) {
  if (!view_->action().empty()) setCursor(Qt::PointingHandCursor);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  inside_.setContentsMargins(kMarginX, kMarginY, kMarginX, kMarginY);
  themeDidChange();
}

void BoxWidget::viewDidChange(platform::ViewChange) {
  update();
  QAccessible::State changed;
  changed.selected = true;
  QAccessibleStateChangeEvent event(this, changed);
  QAccessible::updateAccessibility(&event);
}

void BoxWidget::themeDidChange() {
  setMinimumWidth(2 * kMarginX + kLeastLetters * fontMetrics().averageCharWidth());
  update();
}

void BoxWidget::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  const QColor color =
      isMarked() ? theme.mark(view_->borderColor()) : theme.color(view_->borderColor());
  const double width = isMarked() ? kStrong : kThin;
  QColor tint = color;
  tint.setAlphaF(isMarked() ? static_cast<float>(kTint) : 0);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF frame = QRectF(rect()).adjusted(width / 2, width / 2, -width / 2, -width / 2);
  painter.setPen(QPen(color, width));
  painter.setBrush(palette().brush(QPalette::Active, QPalette::Base));
  painter.drawRoundedRect(frame, kBoxRadius, kBoxRadius);
  painter.setBrush(tint);
  painter.drawRoundedRect(frame, kBoxRadius, kBoxRadius);
}

bool BoxWidget::takes(const QMouseEvent& event) const {
  return event.button() == Qt::LeftButton && !view_->action().empty();
}

// Taken here so that the release comes here.
void BoxWidget::mousePressEvent(QMouseEvent* event) {
  event->setAccepted(takes(*event));
}

void BoxWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (!takes(*event) || !rect().contains(event->pos())) return;
  const QPointF place = mapTo(window(), event->pos());
  // What is pressed may take the widget away.
  const auto box = view_;
  PressObserver& presses = presses_;
  presses.pressed(*box, place);
  presses.released(*box, place);
}

FilePathWidget::FilePathWidget(std::shared_ptr<platform::NSTextField> field, QWidget* parent)
    : WidgetOf(std::move(field), parent) {
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
    loader_.load(path, thumbnailSize() * kMostPixelsPerPoint, [this](const QImage& picture) {
      thumbnail_ = picture;
      update();
    });
  }
  update();
}

void FilePathWidget::themeDidChange() {
  setFont(fontFor(view_->textStyle(), QApplication::font(this)));
  WidgetOf::themeDidChange();
}

QString FilePathWidget::text() const {
  return QString::fromStdString(view_->stringValue());
}

QString FilePathWidget::accessibleName() const {
  const QString label = ViewWidget::accessibleName();
  return label.isEmpty() ? text() : labelled(label, text());
}

QSize FilePathWidget::thumbnailSize() {
  return kThumbnail * textScale();
}

QSize FilePathWidget::sizeHint() const {
  const QSize thumbnail = thumbnailSize();
  return {thumbnail.width() + kGap + kLetters * fontMetrics().averageCharWidth(),
          std::max(thumbnail.height(), fontMetrics().height())};
}

QRect FilePathWidget::textArea() const {
  const QRect logical = rect().adjusted(thumbnailSize().width() + kGap, 0, 0, 0);
  return QStyle::visualRect(layoutDirection(), rect(), logical);
}

QString FilePathWidget::shownText() const {
  return fontMetrics().elidedText(text(), Qt::ElideMiddle, textArea().width());
}

void FilePathWidget::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  const QRectF slot = QStyle::alignedRect(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter,
                                          thumbnailSize(), rect());
  QRectF picture = slot;
  if (!thumbnail_.isNull()) {
    picture.setSize(QSizeF(thumbnail_.size()).scaled(slot.size(), Qt::KeepAspectRatio));
    picture.moveCenter(slot.center());
  }
  const QRectF edge = picture.adjusted(0.5, 0.5, -0.5, -0.5);
  QPainterPath outline;
  outline.addRoundedRect(edge, kPictureRadius, kPictureRadius);
  painter.save();
  painter.setClipPath(outline);
  painter.drawImage(picture, thumbnail_);
  painter.restore();
  painter.setPen(QPen(theme.color(platform::NSSystemColor::Separator), 1,
                      thumbnail_.isNull() ? Qt::DashLine : Qt::SolidLine));
  painter.drawPath(outline);
  painter.setPen(theme.color(view_->textColor()));
  const auto side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
  // A path's slash stays before it, whatever language the rest is in.
  painter.setLayoutDirection(Qt::LayoutDirectionAuto);
  painter.drawText(textArea(), static_cast<int>(side | Qt::AlignAbsolute), shownText());
}

}  // namespace linux_desktop
