#include "desktop/linux/ui/QtDialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "desktop/linux/language/Language.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/ui/ButtonWidgets.h"
#include "desktop/linux/ui/ExposeWatch.h"
#include "desktop/linux/ui/QtWindowPeer.h"
#include "desktop/linux/ui/ShortcutText.h"

namespace linux_desktop {

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

/// Desktops differ in whether they mind the letter case.
QStringList patternsFor(const std::vector<std::string>& types) {
  QStringList patterns;
  for (const std::string& type : types) {
    const QString suffix = QString::fromStdString(type);
    patterns << "*." + suffix.toLower() << "*." + suffix.toUpper();
  }
  patterns.removeDuplicates();
  return patterns.isEmpty() ? QStringList("*") : patterns;
}

QString folderOfPictures() {
  const QString path = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
  return QFileInfo(path).isDir() ? path : QDir::homePath();
}

std::optional<std::string> chosenIn(const QFileDialog& dialog, const QStringList& patterns) {
  const QFileInfo file(dialog.selectedFiles().value(0));
  if (file.isFile() && QDir::match(patterns, file.fileName())) {
    return file.absoluteFilePath().toStdString();
  }
  qCWarning(lcUi) << "a file was chosen that is not of the types asked for";
  return std::nullopt;
}

}  // namespace

// --- What both have in common ---

ModalDialog::ModalDialog(std::unique_ptr<QDialog> dialog, QtWindowPeer* window,
                         WindowServices& services)
    : services_(services), window_(window), dialog_(std::move(dialog)) {
  dialog_->setWindowModality(window_ == nullptr ? Qt::ApplicationModal : Qt::WindowModal);
  if (window_ == nullptr) ++services_.alerts;
}

ModalDialog::~ModalDialog() {
  end();
  QObject::disconnect(dialog_.get(), nullptr, nullptr, nullptr);
  popover_.reset();
  dialog_->hide();
  // Its own event may be what destroys us.
  dialog_.release()->deleteLater();
  // Not every window manager gives the keyboard back to the window that the dialog took it from.
  QtWindowPeer* behind = windowBehind();
  if (services_.alerts > 0 || behind == nullptr) return;
  if (auto* popover = behind->popover()) popover->giveWay(false);
  behind->makeKey();
}

QtWindowPeer* ModalDialog::windowBehind() const {
  const auto& shown = services_.shown;
  if (window_ == nullptr) return shown.empty() ? nullptr : shown.back();
  return std::ranges::find(shown, window_) == shown.end() ? nullptr : window_;
}

void ModalDialog::show() {
  dialog_->winId();
  QWindow& window = *dialog_->windowHandle();
  if (const QtWindowPeer* behind = windowBehind()) {
    window.setTransientParent(behind->handle());
    if (auto* popover = behind->popover()) comeInFrontOf(*behind, *popover);
  }
  dialog_->show();
  if (popover_) return;
  OwnWindows& ownWindows = services_.ownWindows;
  ownWindows.markAsAskedFor(window);
  onceExposed(window, [&window, &ownWindows] { ownWindows.activate(window); });
}

void ModalDialog::comeInFrontOf(const QtWindowPeer& behind, OwnWindows::Popover& popover) {
  popover.giveWay(true);
  QWindow& window = *dialog_->windowHandle();
  dialog_->adjustSize();
  QRect place(QPoint(), dialog_->size());
  place.moveCenter(behind.handle()->screen()->geometry().center());
  popover_ = services_.ownWindows.makePopover(window, place, [this] { dialog_->reject(); });
}

void ModalDialog::end() {
  if (std::exchange(ended_, true)) return;
  if (window_ == nullptr) --services_.alerts;
  for (QtWindowPeer* peer : services_.shown) peer->alertDidEnd();
}

// --- Alerts ---

QtAlert::QtAlert(const platform::NSAlert& alert, Answered answered, QtWindowPeer* sheetOf,
                 WindowServices& services)
    : answered_(std::move(answered)),
      dialog_(boxFor(alert, sheetOf != nullptr), sheetOf, services) {
  dialog_.show();
}

std::unique_ptr<QDialog> QtAlert::boxFor(const platform::NSAlert& alert, bool isSheet) {
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

// --- Open panels ---

QtOpenPanel::QtOpenPanel(const platform::NSOpenPanel& panel, Answered answered,
                         WindowServices& services)
    : answered_(std::move(answered)), dialog_(dialogFor(panel), nullptr, services) {
  dialog_.show();
}

std::unique_ptr<QDialog> QtOpenPanel::dialogFor(const platform::NSOpenPanel& panel) {
  const QStringList patterns = patternsFor(panel.allowedFileTypes());
  auto dialog = std::make_unique<QFileDialog>();
  dialog->setAcceptMode(QFileDialog::AcceptOpen);
  dialog->setFileMode(QFileDialog::ExistingFile);
  dialog->setSupportedSchemes({QStringLiteral("file")});
  dialog->setOption(QFileDialog::HideNameFilterDetails);
  dialog->setOption(QFileDialog::ReadOnly);
  dialog->setWindowTitle(QString::fromStdString(panel.message()));
  dialog->setLabelText(QFileDialog::Accept, plainTitle(panel.prompt()));
  dialog->setNameFilter(
      QStringLiteral("%1 (%2)").arg(localized("Suitable files"), patterns.join(' ')));
  dialog->setDirectory(folderOfPictures());
  QObject::connect(dialog.get(), &QDialog::finished, dialog.get(),
                   [this, &shown = *dialog, patterns](int result) {
                     const bool isAccepted = result == QDialog::Accepted;
                     finish(isAccepted ? chosenIn(shown, patterns) : std::nullopt);
                   });
  return dialog;
}

void QtOpenPanel::finish(std::optional<std::string> path) {
  dialog_.end();
  const Answered answered = std::exchange(answered_, {});
  if (answered) answered(std::move(path));
}

}  // namespace linux_desktop
