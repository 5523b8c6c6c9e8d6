#include "desktop/linux/ui/QtAlert.h"

#include <QPushButton>
#include <utility>

#include "desktop/linux/ui/PlainTitle.h"
#include "desktop/linux/ui/ShortcutText.h"

namespace linux_desktop {

using platform::NSAlert;
using platform::NSAlertStyle;

namespace {

QMessageBox::Icon iconFor(NSAlertStyle style) {
  switch (style) {
    case NSAlertStyle::Warning:
      return QMessageBox::Warning;
    case NSAlertStyle::Informational:
      return QMessageBox::Information;
    case NSAlertStyle::Critical:
      return QMessageBox::Critical;
  }
  return QMessageBox::NoIcon;
}

}  // namespace

QtAlert::QtAlert(const NSAlert& alert, Answered answered, QtWindowPeer* sheetOf,
                 WindowServices& services)
    : answered_(std::move(answered)),
      dialog_(boxFor(alert, sheetOf != nullptr), sheetOf, services) {
  dialog_.show();
}

std::unique_ptr<QMessageBox> QtAlert::boxFor(const NSAlert& alert, bool isSheet) {
  auto box = std::make_unique<QMessageBox>(iconFor(alert.alertStyle()), QStringLiteral("Calmdeck"),
                                           QString::fromStdString(alert.messageText()));
  box->setTextFormat(Qt::PlainText);
  box->setInformativeText(shortcutInWords(QString::fromStdString(alert.informativeText())));
  // A popover of ours stays in front of ordinary windows, so an alert has to as well.
  box->setWindowFlag(Qt::WindowStaysOnTopHint, !isSheet);
  std::size_t index = 0;
  for (const std::string& title : alert.buttonTitles()) {
    QPushButton* button = box->addButton(plainTitle(title), QMessageBox::AcceptRole);
    QObject::connect(button, &QPushButton::clicked, box.get(), [this, index] { finish(index); });
    if (index++ == 0) box->setDefaultButton(button);
    // The last one is what Escape and the title bar's button mean.
    box->setEscapeButton(button);
  }
  return box;
}

void QtAlert::finish(std::size_t button) {
  dialog_.end();
  const Answered answered = std::exchange(answered_, {});
  if (answered) answered(button);
}

}  // namespace linux_desktop
