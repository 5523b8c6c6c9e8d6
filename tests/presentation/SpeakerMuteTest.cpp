#include <gtest/gtest.h>

#include <functional>

#include "presentation/ViewController.h"
#include "support/DeskTest.h"

namespace presentation {
namespace {

using namespace platform;
using Lines = std::vector<std::string>;
using Property = simulated::SimulatedAudioObjects::Property;

constexpr AudioObjectPropertyAddress kDefaultOutput{1682929012, 1735159650, 0};  // dOut, glob
constexpr AudioObjectPropertyAddress kMute{1836414053, 1869968496, 0};           // mute, outp
const std::string kDefaultOutputText =
    "AudioObjectPropertyAddress(mSelector: 1682929012, mScope: 1735159650, mElement: 0)";
const std::string kMuteText =
    "AudioObjectPropertyAddress(mSelector: 1836414053, mScope: 1869968496, mElement: 0)";
const Lines kAsksForDevice{"device", "nil", "1", "1", kDefaultOutputText};

Lines operator+(Lines lines, const Lines& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

/// A state of the sound, and the parts of the printed lines that depend on it.
struct Case {
  const char* name;
  std::function<void(simulated::SimulatedDesktop& desk)> prepare;
  Lines reading;     ///< how the reading of its mute ended, and what it gave
  std::string mute;  ///< how the writing ended
  std::optional<bool> mutedAfterwards;
};

std::function<void(simulated::SimulatedDesktop&)> withMute(Property mute) {
  return [mute](simulated::SimulatedDesktop& desk) { desk.audio.setProperty(42, kMute, mute); };
}

Lines reads(const std::string& value) {
  return {"result 1 " + value, "result aaya " + value, "*****************",
          "success(" + value + ")"};
}
Lines fails(const std::string& line, const std::string& failure) {
  return {line, "*****************", failure};
}

const std::string kNoProperty = "failure(NoProperty)";
const Lines kSystemHasNoMute = fails("error aaya1 1,,,, " + kMuteText, kNoProperty);
const std::string kNotSettable = "failure(PropertyNotSettable)";
const std::string kRejected = "failure(SetPropertyData(1852797029))";

const Case kCases[] = {
    {"a device", withMute({}), reads("0"), "success(1)", true},
    {"one that says it is not settable", withMute({.settable = false}), reads("0"), "success(1)",
     true},
    {"one that cannot say", withMute({.settableStatus = kAudioHardwareUnspecifiedError}),
     reads("0"), kNotSettable, false},
    {"one that cannot be read", withMute({.readStatus = kAudioHardwareBadObjectError}),
     fails("error aaya2 42,,,, " + kMuteText + ".....560947818",
           "failure(GetPropertyData(560947818))"),
     "success(1)", true},
    {"one that rejects the write", withMute({.writeStatus = kAudioHardwareIllegalOperationError}),
     reads("0"), kRejected, false},
    {"one without a mute", [](auto& desk) { desk.audio.removeProperty(42, kMute); },
     fails("error aaya1 42,,,, " + kMuteText, kNoProperty), kNoProperty, std::nullopt},
    {"no device", [](auto& desk) { desk.audio.setDefaultOutputDevice(std::nullopt); },
     kSystemHasNoMute, kNoProperty, false},
    {"no sound service", [](auto& desk) { desk.desktop.audioObjects = nullptr; }, kSystemHasNoMute,
     kNoProperty, false},
};

/// These lines, and before the last of them, which is the write's outcome, the write of `value`
/// where there is one to fail.
Lines entries(const Lines& lines, const std::string& value) {
  Lines entries;
  for (const std::string& line : lines) entries.push_back("print " + line);
  if (lines.back() != kNoProperty && lines.back() != kNotSettable) {
    entries.insert(entries.end() - 1, "audio.set 42 mute " + value);
  }
  return entries;
}

class SpeakerMuteTest : public tests::DeskTest {};

TEST_F(SpeakerMuteTest, EveryStepAndOutcomeIsPrinted) {
  const auto panel = std::make_shared<ViewController>();
  for (const Case& row : kCases) {
    SCOPED_TRACE(row.name);
    desk.desktop.audioObjects = &desk.audio;
    desk.audio.addOutputDevice(42);
    desk.audio.setDefaultOutputDevice(42);
    row.prepare(desk);
    const bool isFound = desk.desktop.audioObjects && desk.audio.hasProperty(1, kDefaultOutput);
    const Lines lookup = isFound ? Lines{"result 1 42", "result aaya 42"}
                                 : Lines{"error aaya1 1,,,, " + kDefaultOutputText};
    const std::string device = isFound ? "Optional(42)" : "nil";
    const std::string object = isFound ? "42" : "1";
    const Lines resolved{"device", device, object};

    desk.log.clear();
    panel->muteSpeaker();
    const Lines reads = Lines{object, kMuteText} + row.reading;
    EXPECT_EQ(
        desk.log.entries(),
        entries(kAsksForDevice + lookup + Lines{device} + resolved + reads + Lines{row.mute}, "1"));
    EXPECT_EQ(desk.audio.isMuted(42), row.mutedAfterwards);

    desk.log.clear();
    panel->unmuteSpeaker();
    EXPECT_EQ(desk.log.entries(),
              entries(kAsksForDevice + lookup + resolved +
                          Lines{row.mute == "success(1)" ? "success(0)" : row.mute},
                      "0"));
    EXPECT_NE(desk.audio.isMuted(42), std::optional(true));
  }
}

}  // namespace
}  // namespace presentation
