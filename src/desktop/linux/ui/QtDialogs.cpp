#include "desktop/linux/ui/QtDialogs.h"

#include <QDialog>
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
#include "desktop/linux/ui/PanelWindow.h"
#include "desktop/linux/ui/ShortcutText.h"

namespace linux_desktop {

using platform::NSAlertStyle;
using ModalPeer = platform::port::Windows::ModalPeer;

namespace {

/// A dialog for which one window of ours waits, or all of them, until it ends: what waits takes no
/// input. It gets the keyboard when it comes, and gives it back when it goes.
class ModalDialog final : public ModalPeer {
 public:
  /// `window` waits, and the others do not; null: all wait. `services` outlive this.
  ModalDialog(std::unique_ptr<QDialog> dialog, QtWindowPeer* window, WindowServices& services);
  /// Takes the dialog away; may be called by the dialog's own event. None of its signals comes any
  /// more.
  ~ModalDialog() override;
  ModalDialog(const ModalDialog&) = delete;
  ModalDialog& operator=(const ModalDialog&) = delete;

  void show();
  /// The user has answered, though the dialog may be there a little longer. `tell`, which is called
  /// the first time alone, may destroy this.
  void finish(const std::function<void()>& tell);

 private:
  [[nodiscard]] QtWindowPeer* windowBehind() const;
  void comeInFrontOf(const QtWindowPeer& behind, OwnWindows::Popover& popover);
  void end();

  WindowServices& services_;
  QtWindowPeer* window_;
  std::unique_ptr<QDialog> dialog_;
  bool ended_ = false;
  /// Of an alert that stands in front of a window which the desktop keeps in front of all others.
  std::unique_ptr<OwnWindows::Popover> popover_;
};

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

void ModalDialog::finish(const std::function<void()>& tell) {
  if (ended_) return;
  end();
  tell();
}

void ModalDialog::end() {
  if (std::exchange(ended_, true)) return;
  if (window_ == nullptr) --services_.alerts;
  for (QtWindowPeer* peer : services_.shown) peer->alertDidEnd();
}

// --- Alerts ---

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

std::unique_ptr<ModalPeer> makeAlert(const platform::NSAlert& alert,
                                     const std::function<void(std::size_t button)>& answered,
                                     QtWindowPeer* sheetOf, WindowServices& services) {
  auto owned =
      std::make_unique<QMessageBox>(iconFor(alert.alertStyle()), QStringLiteral("Calmdeck"),
                                    QString::fromStdString(alert.messageText()));
  QMessageBox& box = *owned;
  auto dialog = std::make_unique<ModalDialog>(std::move(owned), sheetOf, services);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(shortcutInWords(QString::fromStdString(alert.informativeText())));
  // A popover of ours stays in front of ordinary windows, so an alert has to as well.
  box.setWindowFlag(Qt::WindowStaysOnTopHint, sheetOf == nullptr);
  std::size_t index = 0;
  for (const std::string& title : alert.buttonTitles()) {
    QPushButton* button = box.addButton(plainTitle(title), QMessageBox::AcceptRole);
    QObject::connect(button, &QPushButton::clicked, &box, [&dialog = *dialog, answered, index] {
      dialog.finish([answered, index] { answered(index); });
    });
    if (index++ == 0) box.setDefaultButton(button);
    // The last one is what Escape and the title bar's button mean.
    box.setEscapeButton(button);
  }
  dialog->show();
  return dialog;
}

// --- Open panels ---

namespace {

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

/// In which the user has asked for the panel.
QtWindowPeer* titledWindow(const WindowServices& services) {
  const auto& shown = services.shown;
  const auto titled = std::ranges::find_if(shown.rbegin(), shown.rend(), &QtWindowPeer::isTitled);
  return titled == shown.rend() ? nullptr : *titled;
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

std::unique_ptr<ModalPeer> makeOpenPanel(
    const platform::NSOpenPanel& panel,
    const std::function<void(std::optional<std::string> path)>& answered,
    WindowServices& services) {
  const QStringList patterns = patternsFor(panel.allowedFileTypes());
  auto owned = std::make_unique<QFileDialog>();
  QFileDialog& box = *owned;
  auto dialog = std::make_unique<ModalDialog>(std::move(owned), titledWindow(services), services);
  box.setAcceptMode(QFileDialog::AcceptOpen);
  box.setFileMode(QFileDialog::ExistingFile);
  box.setSupportedSchemes({QStringLiteral("file")});
  box.setOption(QFileDialog::HideNameFilterDetails);
  box.setOption(QFileDialog::ReadOnly);
  box.setWindowTitle(QString::fromStdString(panel.message()));
  box.setLabelText(QFileDialog::Accept, plainTitle(panel.prompt()));
  box.setNameFilter(QStringLiteral("%1 (%2)").arg(localized("Suitable files"), patterns.join(' ')));
  box.setDirectory(folderOfPictures());
  QObject::connect(
      &box, &QDialog::finished, &box, [&dialog = *dialog, &box, answered, patterns](int result) {
        const auto path = result == QDialog::Accepted ? chosenIn(box, patterns) : std::nullopt;
        dialog.finish([answered, path] { answered(path); });
      });
  dialog->show();
  return dialog;
}

}  // namespace linux_desktop
