// A program with nothing but what hides other programs, on whichever desktop it is started. Reads
// commands from the fifo that it is given, a line each:
//   hide, show   as the mode does when it starts and stops; "refused" where that cannot be asked
//   hidden       "hidden" or "shown", as the port tells of the others
//   open         a window of its own, magenta; "key" for each that is pressed there
// Ends each line's work with "done".

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <memory>
#include <string>

#include "desktop/linux/SessionServices.h"
#include "desktop/linux/loop/QtMainLoop.h"
#include "desktop/wayland/OrderFifo.h"

namespace {

using platform::NSApplicationActivationPolicy;
using platform::port::ApplicationInfo;
using probe::say;

class OwnWindow final : public QWidget {
  void keyPressEvent(QKeyEvent* /*event*/) override { say("key"); }
};

class Probe {
 public:
  explicit Probe(const char* fifo)
      : orders_(fifo, [this](const std::string& order) { obey(order); }) {
    window_.setPalette(QPalette(Qt::magenta));
    window_.resize(120, 90);
  }

  [[nodiscard]] bool canHide() const { return services_.runningApplications != nullptr; }

 private:
  void obey(const std::string& order) {
    if (order == "hide") hide();
    if (order == "show") show();
    if (order == "hidden") tell();
    if (order == "open") window_.show();
    loop_.post([] { say("done"); });
  }

  std::vector<ApplicationInfo> regular() {
    auto infos = services_.runningApplications->runningApplications();
    std::erase_if(infos, [](const ApplicationInfo& info) {
      return info.activationPolicy != NSApplicationActivationPolicy::Regular;
    });
    return infos;
  }

  void hide() {
    const auto pass = [this, infos = regular()] {
      for (const ApplicationInfo& info : infos) {
        if (!services_.runningApplications->hide(info.id)) say("refused");
      }
    };
    pass();
    loop_.post(pass);
  }

  void show() {
    for (const ApplicationInfo& info : regular()) {
      if (services_.runningApplications->isHidden(info.id)) {
        services_.runningApplications->unhide(info.id);
      }
    }
  }

  void tell() {
    bool some = false;
    for (const ApplicationInfo& info : regular()) {
      some = some || services_.runningApplications->isHidden(info.id);
    }
    say(some ? "hidden" : "shown");
  }

  linux_desktop::QtMainLoop loop_;
  linux_desktop::SessionServices services_;
  OwnWindow window_;
  probe::OrderFifo orders_;
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QApplication::setDesktopFileName(QStringLiteral("org.calmdeck.Calmdeck"));
  if (argc < 2) return 1;
  const Probe probe(argv[1]);
  say(probe.canHide() ? "up" : "cannot");
  return QApplication::exec();
}
