// A program with nothing but the running applications. Reads commands from the fifo that it is
// given, a line each; the words of one line are carried out in one turn of the loop:
//   hide, show    as the mode does when it starts and stops
//   list          a line for each application: "app <id> <policy> <hidden> <name>"
//   cost          "cost <requests> <round trips>", the requests of the X connection and the round
//                 trips of hide and show since the last time
// Ends each line's work with "done".

#include <QApplication>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>

#include "desktop/applications/RoundTripCount.h"
#include "desktop/linux/loop/QtMainLoop.h"
#include "desktop/linux/x11/XApplications.h"
#include "desktop/probe/OrderFifo.h"

namespace {

using linux_desktop::XApplications;
using platform::NSApplicationActivationPolicy;
using platform::port::ApplicationInfo;
using probe::say;

class Probe {
 public:
  Probe(linux_desktop::XServer& server, const char* fifo)
      : server_(server), orders_(fifo, [this](const std::string& line) { read(line); }) {
    countRoundTripsOf(server.get());
  }

 private:
  void read(const std::string& line) {
    std::istringstream words(line);
    for (std::string word; words >> word;) obey(word);
    loop_.post([] { say("done"); });
  }

  void obey(const std::string& word) {
    if (word == "hide") hide();
    if (word == "show") show();
    if (word == "list") list();
    if (word == "cost") sayCost();
  }

  std::vector<ApplicationInfo> regular() {
    auto infos = applications_.runningApplications();
    std::erase_if(infos, [](const ApplicationInfo& info) {
      return info.activationPolicy != NSApplicationActivationPolicy::Regular;
    });
    return infos;
  }

  void hide() {
    counted([this] {
      const auto pass = [this, infos = regular()] {
        for (const ApplicationInfo& info : infos) {
          if (!applications_.hide(info.id)) say("refused");
        }
      };
      pass();
      loop_.post([this, pass] { counted(pass); });
    });
  }

  void show() {
    counted([this] {
      for (const ApplicationInfo& info : regular()) {
        if (applications_.isHidden(info.id)) applications_.unhide(info.id);
      }
    });
  }

  /// For the round trips of the calls alone. How many more the answers of the window manager cost
  /// depends on how they are bunched, which is up to the machine.
  void counted(const std::function<void()>& calls) {
    std::ignore = takeRoundTripCount();
    calls();
    roundTrips_ += takeRoundTripCount();
  }

  void list() {
    for (const ApplicationInfo& info : applications_.runningApplications()) {
      const bool isRegular = info.activationPolicy == NSApplicationActivationPolicy::Regular;
      say("app " + std::to_string(info.id) + (isRegular ? " regular" : " accessory") +
          (applications_.isHidden(info.id) ? " hidden " : " shown ") +
          info.localizedName.value_or("-"));
    }
  }

  void sayCost() {
    const unsigned sequence = xcb_no_operation(server_.get()).sequence;
    say("cost " + std::to_string(sequence - std::exchange(sequence_, sequence)) + " " +
        std::to_string(std::exchange(roundTrips_, 0)));
  }

  linux_desktop::XServer& server_;
  linux_desktop::XEvents events_{server_};
  XApplications applications_{events_};
  linux_desktop::QtMainLoop loop_;
  probe::OrderFifo orders_;
  unsigned sequence_ = 0;
  int roundTrips_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setApplicationDisplayName(QStringLiteral("Probe"));
  const auto server = linux_desktop::XServer::connect();
  if (!server || argc < 2) return 1;
  const Probe probe(*server, argv[1]);
  say("up");
  return QApplication::exec();
}
