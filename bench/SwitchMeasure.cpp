#include "bench/SwitchMeasure.h"

#include "bench/DeskProgram.h"
#include "bench/MuteWatch.h"

namespace bench {

namespace {

double milliseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

}  // namespace

void measureSwitch(const Options& options, Report& report) {
  const auto desk = openDesk(options.panel);
  ReadyProgram ready(*desk);
  MuteWatch sink("out1");
  const auto byClick = [&](bool muted) {
    const Clock::time_point start = ready.clickMaster();
    return milliseconds(sink.await(muted) - start);
  };
  const auto byCall = [&](bool muted) {
    const Clock::time_point start = Clock::now();
    sink.request(muted);
    return milliseconds(sink.await(muted) - start);
  };
  std::vector<double> ours;
  std::vector<double> floor;
  for (int i = 0; i <= options.switches; ++i) {
    const double click = byClick(true);
    byClick(false);
    const double call = byCall(true);
    byCall(false);
    if (i == 0) continue;  // warms up
    ours.push_back(click);
    floor.push_back(call);
  }
  ready.program().end();
  report.compare("switch-on until the sink is muted", ours, floor, "ms", "1.3");
}

}  // namespace bench
