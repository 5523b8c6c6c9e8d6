#include <gtest/gtest.h>

#include <functional>

#include "desktop/simulated/SimulatedDesktop.h"
#include "platform/Runtime.h"
#include "presentation/ViewController.h"

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
  bool findsDevice;
  Lines lookup;   ///< how the look for the device ended
  Lines reading;  ///< how the reading of its mute ended, and what it gave
  std::string mute;
  std::string unmute;
  std::optional<bool> mutedAfterwards;
};

std::function<void(simulated::SimulatedDesktop&)> withMute(Property mute) {
  return [mute](simulated::SimulatedDesktop& desk) { desk.audio.setProperty(42, kMute, mute); };
}

const Lines kFound{"result 1 42", "result aaya 42"};
const Lines kReadsZero{"result 1 0", "result aaya 0", "*****************", "success(0)"};
const Lines kNoDevice{"error aaya1 1,,,, " + kDefaultOutputText};
const Lines kSystemHasNoMute{"error aaya1 1,,,, " + kMuteText, "*****************",
                             "failure(NoProperty)"};
const std::string kNoProperty = "failure(NoProperty)";

const Case kCases[] = {
    {"a device", withMute({}), true, kFound, kReadsZero, "success(1)", "success(0)", true},
    {"a muted device",
     withMute({.value = 1}),
     true,
     kFound,
     {"result 1 1", "result aaya 1", "*****************", "success(1)"},
     "success(1)",
     "success(0)",
     true},
    {"one that says it is not settable", withMute({.settable = false}), true, kFound, kReadsZero,
     "success(1)", "success(0)", true},
    {"one that cannot say", withMute({.settableStatus = kAudioHardwareUnspecifiedError}), true,
     kFound, kReadsZero, "failure(PropertyNotSettable)", "failure(PropertyNotSettable)", false},
    {"one that cannot be read",
     withMute({.readStatus = kAudioHardwareBadObjectError}),
     true,
     kFound,
     {"error aaya2 42,,,, " + kMuteText + ".....560947818", "*****************",
      "failure(GetPropertyData(560947818))"},
     "success(1)",
     "success(0)",
     true},
    {"one that rejects the write", withMute({.writeStatus = kAudioHardwareIllegalOperationError}),
     true, kFound, kReadsZero, "failure(SetPropertyData(1852797029))",
     "failure(SetPropertyData(1852797029))", false},
    {"one with a negative status", withMute({.writeStatus = -66680}), true, kFound, kReadsZero,
     "failure(SetPropertyData(-66680))", "failure(SetPropertyData(-66680))", false},
    {"one without a mute",
     [](auto& desk) { desk.audio.removeProperty(42, kMute); },
     true,
     kFound,
     {"error aaya1 42,,,, " + kMuteText, "*****************", kNoProperty},
     kNoProperty,
     kNoProperty,
     std::nullopt},
    {"no device", [](auto& desk) { desk.audio.setDefaultOutputDevice(std::nullopt); }, false,
     kNoDevice, kSystemHasNoMute, kNoProperty, kNoProperty, false},
    {"a failing look for it",
     [](auto& desk) {
       desk.audio.setProperty(1, kDefaultOutput, {.readStatus = kAudioHardwareUnspecifiedError});
     },
     false,
     {"error aaya2 1,,,, " + kDefaultOutputText + ".....2003329396"},
     kSystemHasNoMute,
     kNoProperty,
     kNoProperty,
     false},
    {"no sound service", [](auto& desk) { desk.hasAudio = false; }, false, kNoDevice,
     kSystemHasNoMute, kNoProperty, kNoProperty, false},
};

class SpeakerMuteTest : public ::testing::Test {
 protected:
  SpeakerMuteTest() {
    desk.audio.addOutputDevice(42);
    desk.audio.setDefaultOutputDevice(42);
  }

  simulated::SimulatedDesktop desk;
  Runtime runtime{desk};
  std::shared_ptr<ViewController> panel = std::make_shared<ViewController>();
};

TEST_F(SpeakerMuteTest, EveryStepAndOutcomeIsPrinted) {
  for (const Case& row : kCases) {
    SCOPED_TRACE(row.name);
    desk.hasAudio = true;
    desk.audio.addOutputDevice(42);
    desk.audio.setDefaultOutputDevice(42);
    row.prepare(desk);
    const std::string device = row.findsDevice ? "Optional(42)" : "nil";
    const std::string object = row.findsDevice ? "42" : "1";
    const Lines resolved{"device", device, object};

    desk.output.lines.clear();
    panel->muteSpeaker();
    const Lines reads{object, kMuteText};
    EXPECT_EQ(desk.output.lines, kAsksForDevice + row.lookup + Lines{device} + resolved + reads +
                                     row.reading + Lines{row.mute});
    EXPECT_EQ(desk.audio.isMuted(42), row.mutedAfterwards);

    desk.output.lines.clear();
    panel->unmuteSpeaker();
    EXPECT_EQ(desk.output.lines, kAsksForDevice + row.lookup + resolved + Lines{row.unmute});
    EXPECT_NE(desk.audio.isMuted(42), std::optional(true));
  }
}

TEST_F(SpeakerMuteTest, WhoCannotSayWhetherItIsSettableIsNotWrittenTo) {
  desk.audio.setProperty(42, kMute, {.settableStatus = kAudioHardwareUnspecifiedError});
  panel->muteSpeaker();
  panel->unmuteSpeaker();
  EXPECT_EQ(desk.log.calls("audio.set"), Lines{});
}

TEST_F(SpeakerMuteTest, TheDeviceIsWrittenToEvenIfNothingWouldChange) {
  panel->unmuteSpeaker();
  panel->muteSpeaker();
  panel->muteSpeaker();
  EXPECT_EQ(desk.log.calls(),
            (Lines{"audio.set 42 mute 0", "audio.set 42 mute 1", "audio.set 42 mute 1"}));
}

TEST_F(SpeakerMuteTest, AnotherDefaultDeviceIsUnmutedAndTheOldOneStaysMuted) {
  panel->muteSpeaker();
  desk.audio.addOutputDevice(43, true);
  desk.audio.setDefaultOutputDevice(43);
  panel->unmuteSpeaker();
  EXPECT_EQ(desk.audio.isMuted(42), std::optional(true));
  EXPECT_EQ(desk.audio.isMuted(43), std::optional(false));
}

TEST_F(SpeakerMuteTest, AValueThatDoesNotFitItsRoomIsRefused) {
  std::uint32_t value = 7;
  std::uint32_t size = 2;
  EXPECT_EQ(AudioObjectGetPropertyData(42, kMute, 0, nullptr, size, &value),
            kAudioHardwareBadPropertySizeError);
  EXPECT_EQ(AudioObjectSetPropertyData(42, kMute, 0, nullptr, 8, &value),
            kAudioHardwareBadPropertySizeError);
  EXPECT_EQ(value, 7U);
  size = 8;
  EXPECT_EQ(AudioObjectGetPropertyData(42, kMute, 0, nullptr, size, &value), noErr);
  EXPECT_EQ(size, 4U);
  EXPECT_EQ(value, 0U);
}

}  // namespace
}  // namespace presentation
