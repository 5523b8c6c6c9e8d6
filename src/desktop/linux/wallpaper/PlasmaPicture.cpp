#include "desktop/linux/wallpaper/PlasmaPicture.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>
#include <cmath>
#include <limits>

namespace linux_desktop {
namespace {

QString themePicture(const PlasmaLook& look) {
  const QString defaults = QStandardPaths::locate(
      QStandardPaths::GenericDataLocation,
      QStringLiteral("plasma/look-and-feel/%1/contents/defaults").arg(look.package));
  if (defaults.isEmpty()) return {};
  const QSettings file(defaults, QSettings::IniFormat);
  return file.value(QStringLiteral("Wallpaper/Image")).toString();
}

QString pathOf(const QString& image) {
  if (image.isEmpty() || image.startsWith(QLatin1Char('/'))) return image;
  if (image.startsWith(QLatin1String("file:"))) return QUrl(image).toLocalFile();
  return QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                QStringLiteral("wallpapers/") + image,
                                QStandardPaths::LocateDirectory);
}

/// Of a picture that is named after it; empty for any other.
QSize namedSize(const QString& name) {
  static const QRegularExpression size(QStringLiteral("^(\\d+)x(\\d+)$"));
  const QRegularExpressionMatch match = size.match(name);
  return match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
}

/// Plasma's own measure: the proportions count before the width, and a picture that has to be
/// enlarged before one that is too large.
float distance(const QSize& picture, const QSize& screen) {
  constexpr float kWeightOfProportions = 25000;
  const auto ratio = [](const QSize& size) {
    return static_cast<float>(size.width()) / static_cast<float>(size.height());
  };
  const int wider = picture.width() - screen.width();
  return std::abs(ratio(picture) - ratio(screen)) * kWeightOfProportions +
         static_cast<float>(wider >= 0 ? wider : -2 * wider);
}

QString bestIn(const QDir& folder, const QSize& screen) {
  QString best;
  float least = std::numeric_limits<float>::max();
  for (const QFileInfo& file : folder.entryInfoList(QDir::Files)) {
    const QSize size = namedSize(file.completeBaseName());
    if (size.isEmpty()) continue;
    const float away = distance(size, screen);
    if (away >= least) continue;
    least = away;
    best = file.filePath();
  }
  return best;
}

}  // namespace

QString plasmaPicture(const QString& image, const QSize& size, const PlasmaLook& look) {
  QString path = pathOf(image.isEmpty() ? themePicture(look) : image);
  const QFileInfo found(path);
  if (path.isEmpty() || found.isFile()) return path;
  const QDir folder(QDir(path).filePath(QStringLiteral("contents")));
  const QString dark =
      look.isDark ? bestIn(folder.filePath(QStringLiteral("images_dark")), size) : QString();
  return dark.isEmpty() ? bestIn(folder.filePath(QStringLiteral("images")), size) : dark;
}

}  // namespace linux_desktop
