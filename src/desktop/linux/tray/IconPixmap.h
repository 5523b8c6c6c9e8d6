#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>

namespace linux_desktop {

/// One size of an icon as a StatusNotifierItem carries it, signature (iiay): ARGB32, not
/// premultiplied, rows from the top, bytes in network order.
struct IconPixmap {
  int width = 0;
  int height = 0;
  QByteArray pixels;
};

using IconPixmaps = QList<IconPixmap>;

/// Signature (sa(iiay)ss).
struct ToolTip {
  QString iconName;
  IconPixmaps icon;
  QString title;
  QString text;
};

QDBusArgument& operator<<(QDBusArgument& out, const IconPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& in, IconPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& out, const ToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& in, ToolTip& toolTip);

/// Makes the structures known to QtDBus. Call it before the first use; again does no harm.
void registerIconPixmapTypes();

}  // namespace linux_desktop
