#include "bench/CompositorMeasure.h"

#include <cctype>
#include <chrono>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "bench/CompositorDesk.h"

namespace bench {

using namespace std::chrono_literals;
using harness::Compositor;

namespace {

/// What both do after their effects are seen is over by then.
constexpr auto kRest = 1s;
/// More windows do not fit beside each other there.
constexpr int kMostWindows = 50;

std::string nameOf(Compositor kind) {
  std::ostringstream name;
  name << kind;
  return name.str();
}

/// Milliseconds by effect.
using Times = std::map<std::string, std::vector<double>>;

class CompositorRace {
 public:
  CompositorRace(Compositor kind, int windows)
      : kind_(kind), windows_(windows), desk_(kind, windows) {}

  void toggleOurs(bool on, Times& times) {
    const Clock::time_point start = desk_.toggle();
    add(times, "windows", start, desk_.awaitWindows(on));
    add(times, "sink", start, desk_.awaitSink(on));
    add(times, "cover", start, desk_.awaitCovers(on));
    std::this_thread::sleep_for(kRest);
  }
  void toggleScript(bool on, Times& times) {
    std::string compositor = nameOf(kind_);
    compositor.front() = static_cast<char>(std::tolower(compositor.front()));
    const Clock::time_point start = Clock::now();
    const auto script = desk_.desk().start(
        {BENCH_COMPOSITOR_SCRIPT, compositor, on ? "on" : "off", std::to_string(windows_)});
    add(times, "windows", start, desk_.awaitWindows(on));
    add(times, "sink", start, desk_.awaitSink(on));
    script->waitForExit();
    std::this_thread::sleep_for(kRest);
  }
  void end() { desk_.program().terminate(5s); }

 private:
  static void add(Times& times, const std::string& effect, Clock::time_point start,
                  Clock::time_point seen) {
    times[effect].push_back(std::chrono::duration<double, std::milli>(seen - start).count());
  }

  Compositor kind_;
  int windows_;
  CompositorDesk desk_;
};

void report(const std::string& with, const Times& ours, const Times& script, Report& report) {
  for (const auto& [effect, times] : ours) {
    if (const auto theirs = script.find(effect); theirs != script.end()) {
      report.compare(with + effect, times, theirs->second, "ms", "");
    } else {
      report.figure(with + effect, times, "ms");
    }
  }
}

}  // namespace

void measureCompositors(const Options& options, Report& table) {
  for (const Compositor kind : harness::installedCompositors()) {
    for (const int windows : options.windows) {
      if (windows > kMostWindows) continue;
      CompositorRace race(kind, windows);
      Times ours[2];
      Times script[2];
      // The first turn of each does not count.
      for (int i = 0; i <= options.compositors; ++i) {
        Times unused[2];
        for (const bool on : {true, false}) race.toggleOurs(on, i > 0 ? ours[on] : unused[on]);
        for (const bool on : {true, false}) race.toggleScript(on, i > 0 ? script[on] : unused[on]);
      }
      race.end();
      for (const bool on : {true, false}) {
        report(
            nameOf(kind) + ", " + std::to_string(windows) + " windows, " + (on ? "on: " : "off: "),
            ours[on], script[on], table);
      }
    }
  }
}

}  // namespace bench
