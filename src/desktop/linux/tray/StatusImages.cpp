#include "desktop/linux/tray/StatusImages.h"

#include <QPainter>
#include <QStandardPaths>
#include <QSvgRenderer>
#include <QtEndian>

#include "desktop/linux/log/Log.h"
#include "platform/appkit/NSImage.h"

namespace linux_desktop {
namespace {

/// Icon sizes of the usual panels at scale 1 and 2; a panel scales from the next larger one.
struct Size {
  int pixels;
  bool isOnGrid22 = false;
};
constexpr Size kSizes[] = {{16}, {22, true}, {24, true}, {32}, {48}, {64}};
constexpr int kGrid22 = 22;

QImage render(QSvgRenderer& renderer, const Size& size) {
  QImage picture(size.pixels, size.pixels, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  if (!renderer.isValid()) return picture;
  const QString element = QStringLiteral("grid22");
  QPainter painter(&picture);
  if (size.isOnGrid22 && renderer.elementExists(element)) {
    const int rim = (size.pixels - kGrid22) / 2;
    renderer.render(&painter, element, QRectF(rim, rim, kGrid22, kGrid22));
  } else {
    renderer.render(&painter);
  }
  return picture;
}

/// Where panels look for icons too.
QString installedName(const platform::NSImage* image) {
  if (image == nullptr) return {};
  const QString name =
      QStringLiteral("org.calmdeck.Calmdeck-%1-symbolic").arg(image->name().c_str());
  const QString file = QStringLiteral("icons/hicolor/symbolic/apps/%1.svg").arg(name);
  const QString found = QStandardPaths::locate(QStandardPaths::GenericDataLocation, file);
  return found.isEmpty() ? QString() : name;
}

IconPixmap toPixmap(const QImage& picture) {
  const QImage plain = picture.convertToFormat(QImage::Format_ARGB32);
  QByteArray pixels(plain.sizeInBytes(), Qt::Uninitialized);
  qToBigEndian<quint32>(plain.constBits(), plain.sizeInBytes() / 4, pixels.data());
  return {plain.width(), plain.height(), pixels};
}

StatusImage renderAll(std::string_view svg) {
  QSvgRenderer renderer;
  if (!svg.empty()) {
    renderer.load(QByteArray::fromRawData(svg.data(), static_cast<qsizetype>(svg.size())));
  }
  StatusImage image;
  for (const Size& size : kSizes) {
    const QImage picture = render(renderer, size);
    image.icon.addPixmap(QPixmap::fromImage(picture));
    image.pixmaps.append(toPixmap(picture));
  }
  if (!svg.empty() && !renderer.isValid()) {
    qCWarning(lcTray, "a status picture is not valid SVG; the icon stays empty");
  }
  return image;
}

}  // namespace

const StatusImage& StatusImages::rendered(const platform::NSImage* image) {
  const std::string_view svg = image == nullptr ? std::string_view() : image->bytes();
  const auto [place, isNew] = rendered_.try_emplace(svg.data());
  if (isNew) {
    place->second = renderAll(svg);
    place->second.name = installedName(image);
  }
  return place->second;
}

}  // namespace linux_desktop
