// An ordinary program of somebody else's, windows of one colour:
//
//   foreign_window NAME COLOUR [COUNT]
//
// NAME is the windows' title and what compositors know the program by, COLOUR as #rrggbb. It says
// what it hears: "active" and "inactive" as the keyboard comes and goes, "key TEXT", "press". F5
// minimises the window, F11 has it fill the screen.

#include <QApplication>
#include <QKeyEvent>
#include <QPalette>
#include <QWidget>
#include <deque>
#include <iostream>

namespace {

class Window : public QWidget {
 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_F5) showMinimized();
    if (event->key() == Qt::Key_F11) showFullScreen();
    if (!event->text().isEmpty()) say("key " + event->text().toStdString());
  }
  void mousePressEvent(QMouseEvent*) override { say("press"); }
  void changeEvent(QEvent* event) override {
    if (event->type() == QEvent::ActivationChange) say(isActiveWindow() ? "active" : "inactive");
  }

 private:
  static void say(const std::string& line) { std::cout << line << std::endl; }
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 3) return 2;
  QApplication::setDesktopFileName(arguments.at(1));
  std::deque<Window> windows(arguments.size() > 3 ? arguments.at(3).toUInt() : 1);
  for (Window& window : windows) {
    window.setWindowTitle(arguments.at(1));
    window.setPalette(QPalette(QColor(arguments.at(2))));
    window.resize(300, 200);
    window.show();
  }
  return QApplication::exec();
}
