#include "desktop/linux/tray/StatusImages.h"

#include <QPainter>
#include <QSvgRenderer>
#include <QtEndian>

#include "desktop/linux/log/Log.h"
#include "platform/appkit/NSImage.h"

namespace linux_desktop {
namespace {

/// Icon sizes of the usual panels at scale 1 and 2; a panel scales from the next larger one.
constexpr int kSizes[] = {16, 22, 24, 32, 48, 64};

QImage render(QSvgRenderer& renderer, int size) {
  QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  if (renderer.isValid()) {
    QPainter painter(&picture);
    renderer.render(&painter);
  }
  return picture;
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
  for (const int size : kSizes) {
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
  if (isNew) place->second = renderAll(svg);
  return place->second;
}

}  // namespace linux_desktop
