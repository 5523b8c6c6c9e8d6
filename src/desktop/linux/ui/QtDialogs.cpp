#include "desktop/linux/ui/QtDialogs.h"

#include <QFileInfo>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QItemSelectionModel>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "desktop/linux/log/Log.h"
#include "desktop/linux/ui/ButtonWidgets.h"
#include "desktop/linux/ui/ExposeWatch.h"
#include "desktop/linux/ui/PicturePreview.h"
#include "desktop/linux/ui/QtWindowPeer.h"
#include "desktop/linux/ui/ShortcutText.h"

namespace linux_desktop {

ModalDialog::ModalDialog(std::unique_ptr<QDialog> dialog, QtWindowPeer* window,
                         WindowServices& services)
    : services_(services), window_(window), dialog_(std::move(dialog)) {
  dialog_->setWindowModality(window_ == nullptr ? Qt::ApplicationModal : Qt::WindowModal);
  if (window_ == nullptr) ++services_.alerts;
}

ModalDialog::~ModalDialog() {
  end();
  QObject::disconnect(dialog_.get(), nullptr, nullptr, nullptr);
  dialog_->hide();
  // Its own event may be what destroys us.
  dialog_.release()->deleteLater();
  // Not every window manager gives the keyboard back to the window that the dialog took it from.
  QtWindowPeer* behind = windowBehind();
  if (services_.alerts == 0 && behind != nullptr) behind->makeKey();
}

QtWindowPeer* ModalDialog::windowBehind() const {
  const auto& shown = services_.shown;
  if (window_ == nullptr) return shown.empty() ? nullptr : shown.back();
  return std::ranges::find(shown, window_) == shown.end() ? nullptr : window_;
}

void ModalDialog::show() {
  dialog_->winId();
  QWindow& window = *dialog_->windowHandle();
  if (const QtWindowPeer* behind = windowBehind()) window.setTransientParent(behind->handle());
  dialog_->show();
  OwnWindows& ownWindows = services_.ownWindows;
  ownWindows.markAsAskedFor(window);
  onceExposed(window, [&window, &ownWindows] { ownWindows.activate(window, {}); });
}

void ModalDialog::end() {
  if (std::exchange(ended_, true)) return;
  if (window_ == nullptr) --services_.alerts;
  for (QtWindowPeer* peer : services_.shown) peer->alertDidEnd();
}

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

namespace {

/// Room for the places, the whole list and the preview beside one another.
constexpr QSize kSize(900, 520);

QStringList lowerCase(const std::vector<std::string>& types) {
  QStringList result;
  for (const std::string& type : types) result << QString::fromStdString(type).toLower();
  result.removeDuplicates();
  return result;
}

/// Desktops differ in whether they mind the letter case.
QString filterFor(const QStringList& types) {
  QStringList patterns;
  for (const QString& type : types) patterns << "*." + type << "*." + type.toUpper();
  patterns.removeDuplicates();
  return types.isEmpty() ? QStringLiteral("All files (*)")
                         : QStringLiteral("Suitable files (%1)").arg(patterns.join(' '));
}

QString folder(QStandardPaths::StandardLocation location) {
  const QString path = QStandardPaths::writableLocation(location);
  return QFileInfo(path).isDir() ? path : QString();
}

}  // namespace

ChooseFileDialog::ChooseFileDialog(const platform::NSOpenPanel& panel)
    : types_(lowerCase(panel.allowedFileTypes())) {
  setAcceptMode(QFileDialog::AcceptOpen);
  setFileMode(QFileDialog::ExistingFile);
  setSupportedSchemes({QStringLiteral("file")});
  setOption(QFileDialog::HideNameFilterDetails);
  setOption(QFileDialog::ReadOnly);
  setWindowTitle(QString::fromStdString(panel.message()));
  setLabelText(QFileDialog::Accept, plainTitle(panel.prompt()));
  setNameFilter(filterFor(types_));
  const QString pictures = folder(QStandardPaths::PicturesLocation);
  setDirectory(pictures.isEmpty() ? folder(QStandardPaths::HomeLocation) : pictures);
  if (isNative()) return;
  addPlaces();
  addPreview();
}

void ChooseFileDialog::addPreview() {
  auto* grid = qobject_cast<QGridLayout*>(layout());
  if (grid == nullptr) return;
  auto* preview = std::make_unique<PicturePreview>(this).release();
  grid->addWidget(preview, 1, grid->columnCount());
  resize(kSize);
  const auto* list = findChild<QListView*>(QStringLiteral("listView"));
  if (list == nullptr) return;
  // Tells of files that were typed or found by their first letters as well.
  const QItemSelectionModel* selection = list->selectionModel();
  connect(selection, &QItemSelectionModel::selectionChanged, preview, [selection, preview] {
    const QModelIndexList rows = selection->selectedRows();
    preview->show(rows.isEmpty() ? QString()
                                 : rows.front().data(QFileSystemModel::FilePathRole).toString());
  });
}

void ChooseFileDialog::addPlaces() {
  using Paths = QStandardPaths;
  QList<QUrl> places;
  for (const auto place : {Paths::HomeLocation, Paths::PicturesLocation, Paths::DownloadLocation,
                           Paths::DesktopLocation}) {
    const QUrl url = QUrl::fromLocalFile(folder(place));
    if (!url.isEmpty() && !places.contains(url)) places << url;
  }
  setSidebarUrls(places << QUrl::fromLocalFile(QStringLiteral("/")));
}

std::optional<std::string> ChooseFileDialog::chosen() const {
  const QStringList files = selectedFiles();
  if (files.size() != 1) return std::nullopt;
  const QFileInfo file(files.front());
  const bool isOffered = types_.isEmpty() || types_.contains(file.suffix().toLower());
  if (!file.isFile() || !isOffered) return std::nullopt;
  return file.absoluteFilePath().toStdString();
}

void ChooseFileDialog::done(int result) {
  if (result == QDialog::Accepted && !chosen()) {
    // A desktop's own dialog is gone by now.
    if (!isNative()) return sayWhyNot();
    qCWarning(lcUi) << "a file was chosen that is not of the types asked for";
  }
  QFileDialog::done(result);
}

void ChooseFileDialog::sayWhyNot() {
  auto* box = std::make_unique<QMessageBox>(
                  QMessageBox::Information, windowTitle(),
                  QStringLiteral("This file is not of a type that can be used here."),
                  QMessageBox::Ok, this)
                  .release();
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

QtOpenPanel::QtOpenPanel(const platform::NSOpenPanel& panel, Answered answered,
                         WindowServices& services)
    : answered_(std::move(answered)), dialog_(dialogFor(panel), nullptr, services) {
  dialog_.show();
}

std::unique_ptr<QDialog> QtOpenPanel::dialogFor(const platform::NSOpenPanel& panel) {
  auto dialog = std::make_unique<ChooseFileDialog>(panel);
  const ChooseFileDialog& shown = *dialog;
  QObject::connect(dialog.get(), &QDialog::finished, dialog.get(), [this, &shown](int result) {
    finish(result == QDialog::Accepted ? shown.chosen() : std::nullopt);
  });
  return dialog;
}

void QtOpenPanel::finish(std::optional<std::string> path) {
  dialog_.end();
  const Answered answered = std::exchange(answered_, {});
  if (answered) answered(std::move(path));
}

}  // namespace linux_desktop
