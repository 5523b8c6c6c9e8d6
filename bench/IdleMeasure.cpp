#include "bench/IdleMeasure.h"

#include <thread>

#include "bench/DeskProgram.h"
#include "bench/MuteWatch.h"
#include "bench/ProcessFigures.h"

namespace bench {

using namespace std::chrono_literals;

namespace {

// Until the last act has died away: two seconds without a wake-up. Gives up after twenty, so that a
// program that never rests is counted as it is.
void awaitCalm(pid_t pid) {
  const Clock::time_point deadline = Clock::now() + 20s;
  Switches last;
  for (Switches now = contextSwitches(pid); now != last && Clock::now() < deadline;) {
    last = now;
    std::this_thread::sleep_for(2s);
    now = contextSwitches(pid);
  }
}

double wakeUps(pid_t pid, std::chrono::seconds time) {
  awaitCalm(pid);
  const Switches before = contextSwitches(pid);
  std::this_thread::sleep_for(time);
  return static_cast<double>(wakeUpsBetween(before, contextSwitches(pid)));
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
}

}  // namespace bench
