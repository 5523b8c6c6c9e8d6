#include "desktop/linux/tray/IconPixmap.h"

#include <QDBusMetaType>

namespace linux_desktop {

QDBusArgument& operator<<(QDBusArgument& out, const IconPixmap& pixmap) {
  out.beginStructure();
  out << pixmap.width << pixmap.height << pixmap.pixels;
  out.endStructure();
  return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, IconPixmap& pixmap) {
  in.beginStructure();
  in >> pixmap.width >> pixmap.height >> pixmap.pixels;
  in.endStructure();
  return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const ToolTip& toolTip) {
  out.beginStructure();
  out << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
  out.endStructure();
  return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, ToolTip& toolTip) {
  in.beginStructure();
  in >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
  in.endStructure();
  return in;
}

void registerIconPixmapTypes() {
  qDBusRegisterMetaType<IconPixmap>();
  qDBusRegisterMetaType<IconPixmaps>();
  qDBusRegisterMetaType<ToolTip>();
}

}  // namespace linux_desktop
