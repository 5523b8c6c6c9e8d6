#include "bench/ShortcutMeasure.h"

#include <stdexcept>
#include <thread>

#include "bench/DeskProgram.h"
#include "bench/ModeEffects.h"
#include "bench/MuteWatch.h"
#include "shared/SettingsKeys.h"

namespace bench {

using namespace std::chrono_literals;

namespace {

/// What both do after their effects are seen is over by then.
constexpr auto kRest = 1s;
constexpr const char* kMicrophone = "mic1";
/// Between which the hot-key daemon is asked whether it has its keys.
constexpr auto kLook = 50ms;

double milliseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

/// Presses Control, Alt and this key; when the key went down.
Clock::time_point press(const harness::XInput& input, std::string_view key) {
  input.keyDown("ctrl");
  input.keyDown("alt");
  const Clock::time_point down = Clock::now();
  input.keyDown(key);
  for (const std::string_view name : {key, std::string_view("alt"), std::string_view("ctrl")})
    input.keyUp(name);
  return down;
}

/// A desk with a microphone, Calmdeck and sxhkd, each with keys of its own for the same two things.
class ShortcutDesk {
 public:
  explicit ShortcutDesk(int windows) : desk_(windows) {
    harness::SoundServer& sound = desk_.desk().sound();
    sound.pactl({"load-module", "module-null-sink", "sink_name=room"});
    sound.pactl({"load-module", "module-remap-source", "master=room.monitor",
                 "source_name=" + std::string(kMicrophone)});
    sound.pactl({"set-default-source", kMicrophone});
    microphone_.emplace(kMicrophone, MuteWatch::Device::Source);
    effects_.emplace(desk_);
    desk_.choose({shared::kUserdefaultsToggleDesktopIcons, shared::kUserdefaultsToggleDnd,
                  shared::kUserdefaultsToggleHideActiveApps, shared::kUserdefaultsToggleSpeakerOff},
                 R"("kuserdefault_ToggleAppShortcut": "p", "kuserdefault_ToggleAppFlag": [12, 13],
                    "kuserdefault_MuteMicShortcut": "m", "kuserdefault_MuteMicFlag": [12, 13])");
    const std::string script = BENCH_SCRIPT;
    desk_.desk().home().writeConfig(
        "sxhkd/sxhkdrc",
        "ctrl + alt + o\n  " + script + " toggle\nctrl + alt + k\n  " + script + " microphone\n");
    program_.emplace(desk_.desk());
    program_->awaitPanel();
    program_->closePanel();
    daemon_ = desk_.desk().start({"env", "SHELL=/bin/sh", "sxhkd"});
  }

  /// Milliseconds until each effect of the mode was seen.
  std::map<std::string, double> toggle(bool on, std::string_view key, bool covers) {
    const Clock::time_point down = press(desk_.desk().input(), key);
    std::map<std::string, double> took;
    ModeEffects::Seen seen;
    try {
      seen = effects_->await(on, covers ? std::vector<std::string>{"sink", ModeEffects::kIcons}
                                        : std::vector<std::string>{"sink"});
    } catch (const std::runtime_error& error) {
      throw std::runtime_error("after Ctrl+Alt+" + std::string(key) + ": " + error.what() + "\n" +
                               program_->process().errorOutput() + daemon_->errorOutput());
    }
    for (const auto& [effect, when] : seen) took[effect] = milliseconds(when - down);
    std::this_thread::sleep_for(kRest);
    return took;
  }
  double mute(bool muted, std::string_view key) {
    const Clock::time_point down = press(desk_.desk().input(), key);
    const double took = milliseconds(microphone_->await(muted) - down);
    std::this_thread::sleep_for(kLook);
    return took;
  }
  void end() { program_->end(); }

 private:
  ModeDesk desk_;
  std::optional<MuteWatch> microphone_;
  std::optional<ModeEffects> effects_;
  std::optional<DeskProgram> program_;
  std::unique_ptr<harness::Process> daemon_;
};

}  // namespace

void measureShortcuts(const Options& options, Report& report) {
  ShortcutDesk desk(10);
  std::map<std::string, std::vector<double>> ours;
  std::map<std::string, std::vector<double>> script;
  const auto press = [&](std::string_view toggle, std::string_view mute, bool covers, auto& times) {
    for (int i = 0; i <= options.shortcuts; ++i) {
      const auto on = desk.toggle(true, toggle, covers);
      desk.toggle(false, toggle, covers);
      const double muted = desk.mute(true, mute);
      desk.mute(false, mute);
      if (i == 0) continue;  // warms up
      for (const auto& [effect, took] : on) times[effect].push_back(took);
      times["microphone"].push_back(muted);
    }
  };
  // Not in turns: with the script, icons do not come back by themselves.
  press("p", "m", true, ours);
  press("o", "k", false, script);
  desk.end();
  report.compare("shortcut: sink", ours["sink"], script["sink"], "ms", "0.1, 5 ms");
  report.compare("shortcut: microphone", ours["microphone"], script["microphone"], "ms",
                 "0.1, 5 ms");
  report.figure("shortcut: first cover", ours[ModeEffects::kIcons], "ms");
}

}  // namespace bench
