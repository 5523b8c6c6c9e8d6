// The smallest Qt program with a tray icon: what any such program costs.

#include <QApplication>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QPixmap pixmap(22, 22);
  pixmap.fill(Qt::magenta);
  QSystemTrayIcon icon{QIcon(pixmap)};
  icon.show();
  return QApplication::exec();
}
