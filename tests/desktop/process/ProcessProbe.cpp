// The smallest program that stands on the process room; its first argument says on what of it.
#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <csignal>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <string_view>

#include "desktop/linux/process/SingleInstance.h"
#include "desktop/linux/process/StandardOutputStream.h"
#include "desktop/linux/process/TerminationSignals.h"

namespace {

using linux_desktop::SingleInstance;
using linux_desktop::StandardOutputStream;
using linux_desktop::TerminationSignals;

void print(std::string_view line) {
  StandardOutputStream().print(line);
}

void later(const std::function<void()>& work) {
  auto* timer = new QTimer(QCoreApplication::instance());
  timer->setSingleShot(true);
  QObject::connect(timer, &QTimer::timeout, timer, work);
  timer->start(0);
}

// Ends with 0 by itself after being shown as often as the argument says.
int runInstance(int shows) {
  SingleInstance instance([&shows] {
    print("show");
    if (--shows == 0) QCoreApplication::quit();
  });
  switch (instance.claim()) {
    case SingleInstance::Claim::First:
      print("first");
      return QCoreApplication::exec();
    case SingleInstance::Claim::HandedOver:
      print("handed over");
      return 0;
    case SingleInstance::Claim::Unanswered:
      break;
  }
  return 1;
}

// Runs as many loops, one in the other.
int waitForEnd(int loops) {
  const TerminationSignals termination([] {
    print("end");
    ::_exit(0);
  });
  std::function<void(int)> nest = [&nest](int left) {
    if (left == 0) return print("ready");
    later([&nest, left] { nest(left - 1); });
    QEventLoop().exec(QEventLoop::ExcludeUserInputEvents);
  };
  nest(loops);
  return 1;
}

// Qt sends the session manager's word in this way.
int logOut(int /*unused*/) {
  const TerminationSignals termination([] {
    print("end");
    ::_exit(0);
  });
  later([] {
    QEventLoop inner;
    later([] {
      QEvent quit(QEvent::Quit);
      QCoreApplication::sendEvent(QCoreApplication::instance(), &quit);
    });
    inner.exec();
  });
  return 1 + QCoreApplication::exec();
}

// Prints until nobody reads.
int printOn(int lines) {
  const TerminationSignals termination([] {});
  for (int line = 0; line < lines; ++line) print("line");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const std::map<std::string_view, int (*)(int)> actions{
      {"instance", runInstance}, {"end", waitForEnd}, {"logout", logOut}, {"print", printOn}};
  return actions.at(argv[1])(std::stoi(argv[2]));
}
