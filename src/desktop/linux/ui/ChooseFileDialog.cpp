#include "desktop/linux/ui/ChooseFileDialog.h"

#include <QFileInfo>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QItemSelectionModel>
#include <QListView>
#include <QMessageBox>
#include <QStandardPaths>

#include "desktop/linux/ui/PicturePreview.h"
#include "desktop/linux/ui/PlainTitle.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
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

}  // namespace linux_desktop
