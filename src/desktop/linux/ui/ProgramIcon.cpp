#include "desktop/linux/ui/ProgramIcon.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include "platform/appkit/NSImage.h"

namespace linux_desktop {
namespace {

constexpr int kSizes[] = {16, 24, 32, 48, 64, 128};

}  // namespace

QIcon programIcon() {
  QIcon icon;
  const auto image = platform::NSImage::imageNamed("org.calmdeck.Calmdeck");
  if (!image) return icon;
  const std::string_view bytes = image->bytes();
  QSvgRenderer drawing(QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
  for (const int size : kSizes) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter);
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace linux_desktop
