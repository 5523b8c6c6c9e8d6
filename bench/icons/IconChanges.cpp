// calmdeck-bench-icons COUNT: a tray item that changes its image COUNT times, and then says how
// much memory it had after the first hundred changes and has now, in KiB. Before each reading the
// panel gets the time to fetch what it has been told of, and the allocator gives back what is free:
// what is left is in use.

#include <malloc.h>
#include <unistd.h>

#include <QApplication>
#include <QTimer>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "bench/ProcessFigures.h"
#include "desktop/linux/tray/TrayStatusBar.h"
#include "platform/appkit/NSImage.h"
#include "resources/Resources.h"

namespace {

using namespace std::chrono_literals;

constexpr int kWarmUp = 100;
constexpr auto kPause = 2ms;
constexpr auto kRest = 2s;

platform::NSImage imageOf(std::string_view file) {
  for (const resources::File& each : resources::files())
    if (each.name == file) return {std::string(file), each.bytes};
  std::abort();
}

/// Changes the image each time the timer fires, which leaves the tray the time to follow.
class Changer final : public platform::port::StatusItemClient {
 public:
  explicit Changer(int count) : count_(count), item_(bar_.createStatusItem(*this)) {
    QObject::connect(&timer_, &QTimer::timeout, &bar_, [this] { change(); });
    item_->setImage(&images_.front());
    timer_.start(kPause);
  }

  void statusItemClicked(platform::NSEventType) override {}
  void menuItemChosen(std::size_t) override {}
  void menuDidClose() override {}

 private:
  void change() {
    if (!bar_.hasTray()) return;
    if (done_ == kWarmUp || done_ == kWarmUp + count_) {
      if (!std::exchange(resting_, true)) return timer_.start(kRest);
      read();
      timer_.start(kPause);
    }
    resting_ = false;
    ++done_;
    item_->setImage(&images_.at(static_cast<std::size_t>(done_ % 2)));
  }

  void read() {
    ::malloc_trim(0);
    const long now = bench::residentKib(::getpid());
    if (done_ == kWarmUp) {
      before_ = now;
      return;
    }
    std::printf("%ld %ld\n", before_, now);
    std::fflush(stdout);
    QApplication::quit();
  }

  int count_;
  int done_ = 0;
  bool resting_ = false;
  long before_ = 0;
  std::array<platform::NSImage, 2> images_{imageOf("logo-initial-small.svg"),
                                           imageOf("logo-active-small.svg")};
  QTimer timer_;
  linux_desktop::OwnWindows ownWindows_;
  linux_desktop::TrayStatusBar bar_{ownWindows_, nullptr};
  std::unique_ptr<platform::port::StatusItemPeer> item_;
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  const Changer changer(argc > 1 ? std::atoi(argv[1]) : 0);
  return QApplication::exec();
}
