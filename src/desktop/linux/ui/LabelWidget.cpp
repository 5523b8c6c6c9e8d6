#include "desktop/linux/ui/LabelWidget.h"

#include <QApplication>
#include <utility>

#include "desktop/linux/ui/ShortcutText.h"
#include "desktop/linux/ui/Theme.h"

namespace linux_desktop {

LabelWidget::LabelWidget(std::shared_ptr<platform::NSTextField> field, QWidget* parent)
    : QLabel(parent), field_(std::move(field)) {
  setTextFormat(Qt::PlainText);
  viewDidChange(platform::ViewChange::Content);
  themeDidChange();
}

void LabelWidget::viewDidChange(platform::ViewChange) {
  setText(readableShortcut(QString::fromStdString(field_->stringValue())));
}

void LabelWidget::themeDidChange() {
  setFont(fontFor(field_->textStyle(), QApplication::font(this)));
  QPalette own = QApplication::palette(this);
  own.setColor(QPalette::WindowText, Theme(own).color(field_->textColor()));
  setPalette(own);
}

QString LabelWidget::accessibleName() const {
  const QString label = ViewWidget::accessibleName();
  return label.isEmpty() || text().isEmpty() ? label : QStringLiteral("%1: %2").arg(label, text());
}

}  // namespace linux_desktop
