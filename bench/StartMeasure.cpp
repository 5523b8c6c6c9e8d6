#include "bench/StartMeasure.h"

#include <stdexcept>
#include <thread>

#include "bench/DeskProgram.h"
#include "bench/ProcessFigures.h"
#include "desktop/harness/Screen.h"

namespace bench {

using namespace std::chrono_literals;
using harness::Image;
using harness::Rect;

namespace {

/// A panel, looked at closely enough to time what appears on it.
class PanelEye {
 public:
  explicit PanelEye(harness::XDesk& desk) : desk_(desk), area_(desk.panelAreas().at(0)) {
    remember();
  }

  void remember() { before_ = desk_.screen().settled(area_, 300ms, 5s); }
  /// When the panel first showed something new; what shows can be clicked.
  [[nodiscard]] Clock::time_point awaitIcon() const { return await(false, "no icon appeared"); }
  void awaitNoIcon() const { static_cast<void>(await(true, "the icon stayed")); }

 private:
  [[nodiscard]] Clock::time_point await(bool asBefore, const char* complaint) const {
    const auto deadline = Clock::now() + harness::kPatience;
    while ((desk_.screen().area(area_) == before_) != asBefore) {
      if (Clock::now() > deadline) throw std::runtime_error(complaint);
      std::this_thread::sleep_for(2ms);
    }
    return Clock::now();
  }

  harness::XDesk& desk_;
  Rect area_;
  Image before_;
};

struct Figures {
  std::vector<double> milliseconds;
  std::vector<double> mebibytes;

  void add(Clock::duration start, long kib) {
    milliseconds.push_back(std::chrono::duration<double, std::milli>(start).count());
    mebibytes.push_back(static_cast<double>(kib) / 1024);
  }
};

void measureOurs(harness::XDesk& desk, PanelEye& eye, Figures& figures) {
  eye.remember();
  const Clock::time_point start = Clock::now();
  DeskProgram program(desk);
  const Clock::duration took = eye.awaitIcon() - start;
  program.awaitPanel();
  program.closePanel();
  figures.add(took, settledProportionalKib(program.pid()));
  program.end();
  eye.awaitNoIcon();
}

void measureFloor(const harness::XDesk& desk, PanelEye& eye, Figures& figures) {
  eye.remember();
  const Clock::time_point start = Clock::now();
  const auto program = desk.start({BENCH_FLOOR});
  const Clock::duration took = eye.awaitIcon() - start;
  figures.add(took, settledProportionalKib(program->pid()));
  program->terminate();
  eye.awaitNoIcon();
}

}  // namespace

void measureStart(const Options& options, Report& report) {
  const auto desk = openDesk(options.panel);
  PanelEye eye(*desk);
  Figures warmUp;
  measureOurs(*desk, eye, warmUp);
  measureFloor(*desk, eye, warmUp);
  Figures ours;
  Figures floor;
  for (int i = 0; i < options.starts; ++i) {
    measureOurs(*desk, eye, ours);
    measureFloor(*desk, eye, floor);
  }
  report.compare("start until the icon shows", ours.milliseconds, floor.milliseconds, "ms", "1.3");
  report.compare("idle memory (PSS), panel shown once", ours.mebibytes, floor.mebibytes, "MiB",
                 "1.3");
}

}  // namespace bench
