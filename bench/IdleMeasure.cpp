#include "bench/IdleMeasure.h"

#include <sstream>
#include <thread>

#include "bench/CompositorDesk.h"
#include "bench/DeskProgram.h"
#include "bench/MuteWatch.h"
#include "bench/ProcessFigures.h"

namespace bench {

using namespace std::chrono_literals;

namespace {

// Until the last act has died away, also what is put off for five seconds: six without a wake-up.
// Gives up after thirty, so that a program that never rests is counted as it is.
void awaitCalm(pid_t pid) {
  const Clock::time_point deadline = Clock::now() + 30s;
  Switches last;
  for (Switches now = contextSwitches(pid); now != last && Clock::now() < deadline;) {
    last = now;
    std::this_thread::sleep_for(6s);
    now = contextSwitches(pid);
  }
}

double wakeUps(pid_t pid, std::chrono::seconds time) {
  awaitCalm(pid);
  const Switches before = contextSwitches(pid);
  std::this_thread::sleep_for(time);
  return static_cast<double>(wakeUpsBetween(before, contextSwitches(pid)));
}

void measureIdleOn(harness::Compositor kind, const Options& options, Report& report) {
  constexpr int kWindows = 10;
  CompositorDesk desk(kind, kWindows);
  std::ostringstream measure;
  measure << kind << ": wake-ups in " << options.idle.count() << " idle seconds, mode ";
  for (const bool on : {false, true}) {
    if (on) desk.toggle();
    static_cast<void>(desk.awaitCovers(on));
    report.count(measure.str() + (on ? "on" : "off"), wakeUps(desk.program().pid(), options.idle),
                 "", "0");
  }
  desk.program().terminate();
}

}  // namespace

void measureIdle(const Options& options, Report& report) {
  const auto desk = openDesk(options.panel);
  ReadyProgram ready(*desk);
  MuteWatch sink("out1");
  const std::string time = " in " + std::to_string(options.idle.count()) + " idle seconds, mode ";

  ready.program().closePanel();
  report.count("wake-ups" + time + "off", wakeUps(ready.program().pid(), options.idle), "", "0");

  ready.program().openPanel();
  ready.clickMaster();
  static_cast<void>(sink.await(true));
  ready.program().closePanel();
  report.count("wake-ups" + time + "on", wakeUps(ready.program().pid(), options.idle), "", "0");
  ready.program().end();

  for (const harness::Compositor kind : harness::installedCompositors())
    measureIdleOn(kind, options, report);
}

}  // namespace bench
