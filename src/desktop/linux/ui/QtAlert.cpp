#include "desktop/linux/ui/QtAlert.h"

#include <QPushButton>
#include <QWindow>
#include <utility>

#include "desktop/linux/ui/ExposeWatch.h"
#include "desktop/linux/ui/QtWindowPeer.h"
#include "desktop/linux/ui/XWindowHints.h"

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

QString asPlainText(const std::string& title) {
  return QString::fromStdString(title).replace(QLatin1Char('&'), QLatin1String("&&"));
}

}  // namespace

QtAlert::QtAlert(const NSAlert& alert, Answered answered, WindowServices& services)
    : services_(services),
      answered_(std::move(answered)),
      box_(std::make_unique<QMessageBox>(iconFor(alert.alertStyle()), QStringLiteral("Calmdeck"),
                                         QString::fromStdString(alert.messageText()))) {
  box_->setTextFormat(Qt::PlainText);
  // A popover of ours stays in front of ordinary windows, so an alert has to as well.
  box_->setWindowFlag(Qt::WindowStaysOnTopHint);
  box_->setWindowModality(Qt::ApplicationModal);
  std::size_t index = 0;
  for (const std::string& title : alert.buttonTitles()) {
    QPushButton* button = box_->addButton(asPlainText(title), QMessageBox::AcceptRole);
    QObject::connect(button, &QPushButton::clicked, box_.get(), [this, index] { finish(index); });
    if (index++ == 0) box_->setDefaultButton(button);
    // The last one is what Escape and the title bar's button mean.
    box_->setEscapeButton(button);
  }
  ++services_.alerts;
  show();
}

void QtAlert::show() {
  box_->winId();
  QWindow& window = *box_->windowHandle();
  if (!services_.shown.empty()) window.setTransientParent(services_.shown.back()->handle());
  box_->show();
  XServer* server = services_.server.get();
  if (server == nullptr) {
    box_->activateWindow();
    return;
  }
  markAsAskedFor(window, *server);
  onceExposed(window, [&window, server] { activate(window, *server); });
}

QtAlert::~QtAlert() {
  end();
  QObject::disconnect(box_.get(), nullptr, nullptr, nullptr);
  box_->hide();
  // Its own event may be what destroys us.
  box_.release()->deleteLater();
  // Not every window manager gives the keyboard back to the window that the alert took it from.
  if (services_.alerts == 0 && !services_.shown.empty()) services_.shown.back()->makeKey();
}

void QtAlert::finish(std::size_t button) {
  end();
  const Answered answered = std::exchange(answered_, {});
  if (answered) answered(button);
}

void QtAlert::end() {
  if (std::exchange(ended_, true)) return;
  --services_.alerts;
  for (QtWindowPeer* peer : services_.shown) peer->alertDidEnd();
}

}  // namespace linux_desktop
