#include "bench/ModeMeasure.h"

#include <algorithm>
#include <thread>

#include "bench/DeskProgram.h"
#include "bench/ModeEffects.h"
#include "bench/ProcessFigures.h"
#include "bench/ProgramCounts.h"
#include "shared/SettingsKeys.h"

namespace bench {

using namespace std::chrono_literals;

namespace {

/// Covers come this long after another wallpaper was set, whatever the machine.
constexpr Clock::duration kCoverDelay = 1s;
/// What both do after their effects are seen is over by then.
constexpr auto kRest = 1s;
constexpr const char* kLast = "until the last effect";

/// Milliseconds by effect, and until the last of them.
using Times = std::map<std::string, std::vector<double>>;

void add(Times& times, Clock::time_point start, const ModeEffects::Seen& seen,
         Clock::duration coverDelay = {}) {
  double last = 0;
  for (const auto& [effect, when] : seen) {
    const auto took = when - start - (effect == ModeEffects::kIcons ? coverDelay : 0s);
    const double milliseconds = std::chrono::duration<double, std::milli>(took).count();
    times[effect].push_back(milliseconds);
    last = std::max(last, milliseconds);
  }
  times[kLast].push_back(last);
}

/// Calmdeck and the script, on one desk.
class ModeRace {
 public:
  explicit ModeRace(int windows) : desk_(windows), effects_(desk_) {
    desk_.choose({shared::kUserdefaultsToggleDesktopIcons, shared::kUserdefaultsToggleDnd,
                  shared::kUserdefaultsToggleHideActiveApps, shared::kUserdefaultsToggleWallpaper});
    ready_.emplace(desk_.desk());
  }

  /// Both directions once; `coverDelay` is not counted.
  void toggleOurs(Times& on, Times& off) {
    click(true, on, kCoverDelay);
    click(false, off, {});
  }
  void toggleScript(Times& on, Times& off) {
    runScript(true, on);
    runScript(false, off);
  }
  void click(bool on, Times& times, Clock::duration coverDelay) {
    ready_->program().ensurePanel();
    const Clock::time_point start = ready_->clickMaster();
    add(times, start, effects_.await(on), coverDelay);
    std::this_thread::sleep_for(kRest);
  }

  [[nodiscard]] ModeDesk& desk() { return desk_; }
  [[nodiscard]] ReadyProgram& ready() { return *ready_; }

 private:
  void runScript(bool on, Times& times) {
    const Clock::time_point start = Clock::now();
    const auto script = desk_.desk().start(
        {BENCH_SCRIPT, on ? "on" : "off", on ? desk_.chosenPicture().string() : ""});
    add(times, start, effects_.await(on));
    script->waitForExit();
    std::this_thread::sleep_for(kRest);
  }

  ModeDesk desk_;
  ModeEffects effects_;
  std::optional<ReadyProgram> ready_;
};

void compare(const std::string& measure, const Times& ours, const Times& script, Report& report) {
  report.compare(measure + kLast, ours.at(kLast), script.at(kLast), "ms", "0.2");
  for (const auto& [effect, times] : ours)
    if (effect != kLast) report.compare(measure + effect, times, script.at(effect), "ms", "");
}

void measureTimes(ModeRace& race, const Options& options, const std::string& with, Report& report) {
  Times warmUp;
  race.toggleOurs(warmUp, warmUp);
  race.toggleScript(warmUp, warmUp);
  Times oursOn;
  Times oursOff;
  Times scriptOn;
  Times scriptOff;
  for (int i = 0; i < options.modes; ++i) {
    race.toggleOurs(oursOn, oursOff);
    race.toggleScript(scriptOn, scriptOff);
  }
  compare("mode on, " + with, oursOn, scriptOn, report);
  compare("mode off, " + with, oursOff, scriptOff, report);
}

void measureCosts(ModeRace& race, const std::string& with, Report& report) {
  ProgramCounts counts(race.desk().desk());
  race.ready().restart(counts.environment());
  Times unused;
  race.toggleOurs(unused, unused);  // learns names of the server's once
  const pid_t pid = race.ready().program().pid();
  std::vector<double> memory{static_cast<double>(residentKib(race.desk().serverPid()))};
  for (const bool on : {true, false}) {
    // The panel opens before what is counted begins.
    race.ready().program().ensurePanel();
    const ProgramCounts::Figures before = counts.of(pid);
    race.click(on, unused, {});
    const ProgramCounts::Figures after = counts.of(pid);
    const std::string toggle = std::string(on ? "mode on, " : "mode off, ") + with;
    report.figure(toggle + "X requests", {after.requests - before.requests}, "");
    report.figure(toggle + "X round trips", {after.roundTrips - before.roundTrips}, "");
    report.figure(toggle + "bus calls", {after.busCalls - before.busCalls}, "");
    memory.push_back(static_cast<double>(residentKib(race.desk().serverPid())));
  }
  report.figure(with + "X server's memory (RSS), before", {memory[0] / 1024}, "MiB");
  report.figure(with + "while the mode is on", {memory[1] / 1024}, "MiB");
  report.figure(with + "after", {memory[2] / 1024}, "MiB");
}

}  // namespace

void measureMode(const Options& options, Report& report) {
  for (const int windows : options.windows) {
    const std::string with = std::to_string(windows) + " windows: ";
    ModeRace race(windows);
    measureTimes(race, options, with, report);
    measureCosts(race, with, report);
    race.ready().program().end();
  }
}

void measureCovers(const Options& options, Report& report) {
  ModeDesk desk(0);
  ModeEffects effects(desk);
  desk.choose({shared::kUserdefaultsToggleDesktopIcons});
  ReadyProgram ready(desk.desk());
  Times first;
  Times further;
  const auto toggle = [&](Times& times) {
    ready.program().ensurePanel();
    const Clock::time_point start = ready.clickMaster();
    add(times, start, effects.await(true, {ModeEffects::kIcons}));
    std::this_thread::sleep_for(kRest);
    ready.program().ensurePanel();
    ready.clickMaster();
    static_cast<void>(effects.await(false, {ModeEffects::kIcons}));
  };
  for (int i = 0; i < options.modes; ++i) {
    ready.restart({});
    toggle(first);
    toggle(further);
  }
  ready.program().end();
  report.figure("covers on the screen, first", first.at(kLast), "ms");
  report.figure("covers on the screen, further", further.at(kLast), "ms");
}

}  // namespace bench
