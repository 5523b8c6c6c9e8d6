#include "bench/GrowthMeasure.h"

#include <malloc.h>

#include <sstream>
#include <stdexcept>

#include "bench/DeskProgram.h"
#include "bench/MuteWatch.h"
#include "bench/ProcessFigures.h"
#include "bench/SimulatedProgram.h"

namespace bench {

using namespace std::chrono_literals;

namespace {

constexpr int kWarmUp = 100;

// What this thread's allocations hold now.
double heapKib() {
  return static_cast<double>(mallinfo2().uordblks) / 1024;
}

std::string counted(int count, const char* what) {
  return "growth after " + std::to_string(count) + " " + what;
}

}  // namespace

void measureToggleGrowth(const Options& options, Report& report) {
  SimulatedProgram program;
  for (int i = 0; i < kWarmUp; ++i) program.toggle();
  const double before = heapKib();
  for (int i = 0; i < options.toggles; ++i) program.toggle();
  report.count(counted(options.toggles, "toggles, simulated (heap)"), heapKib() - before, "KiB",
               "0");
}

void measureIconGrowth(const Options& options, Report& report) {
  const auto desk = openDesk(options.panel);
  const auto program = desk->start({BENCH_ICONS, std::to_string(options.icons)});
  const auto line = program->waitForLine("^[0-9]+ [0-9]+$", 30s + options.icons * 50ms);
  if (!line) throw std::runtime_error("the icon did not change: " + program->errorOutput());
  long before = 0;
  long after = 0;
  std::istringstream(*line) >> before >> after;
  report.count(counted(options.icons, "icon changes (RSS)"), static_cast<double>(after - before),
               "KiB", "0");
}

void measureClickGrowth(const Options& options, Report& report) {
  const auto desk = openDesk(options.panel);
  ReadyProgram ready(*desk);
  MuteWatch sink("out1");
  bool on = false;
  const auto click = [&](int times) {
    for (int i = 0; i < times; ++i) {
      ready.clickMaster();
      on = !on;
      static_cast<void>(sink.await(on));
    }
  };
  click(kWarmUp);
  const long before = residentKib(ready.program().pid());
  click(options.clicks);
  const long after = residentKib(ready.program().pid());
  report.count(counted(options.clicks, "clicks on the master switch (RSS)"),
               static_cast<double>(after - before), "KiB", "0");
  ready.program().end();
}

}  // namespace bench
