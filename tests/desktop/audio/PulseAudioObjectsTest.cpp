#include <gmock/gmock.h>

#include <QCoreApplication>
#include <optional>
#include <string>

#include "SoundTest.h"

namespace {

using harness::SoundServer;
using linux_desktop::PulseSound;
using platform::AudioObjectID;
using platform::OSStatus;
using platform::port::AudioObjects;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr platform::AudioObjectPropertyAddress kDefaultOutput{
    platform::kAudioHardwarePropertyDefaultOutputDevice, platform::kAudioObjectPropertyScopeGlobal,
    platform::kAudioObjectPropertyElementMain};
constexpr platform::AudioObjectPropertyAddress kMute{platform::kAudioDevicePropertyMute,
                                                     platform::kAudioDevicePropertyScopeOutput,
                                                     platform::kAudioObjectPropertyElementMain};

class PulseAudioObjectsTest : public SoundTest {
 protected:
  static AudioObjectID defaultOutput(const AudioObjects& objects) {
    std::uint32_t id = 0;
    const OSStatus status =
        objects.propertyData(platform::kAudioObjectSystemObject, kDefaultOutput, id);
    return status == platform::noErr ? id : 0;
  }
  static std::optional<std::uint32_t> mute(const AudioObjects& objects, AudioObjectID device) {
    std::uint32_t value = 7;
    const OSStatus status = objects.propertyData(device, kMute, value);
    return status == platform::noErr ? std::optional(value) : std::nullopt;
  }
};

/// With a server that runs already when our side begins.
class RunningServerTest : public PulseAudioObjectsTest {
 protected:
  SoundServer server = serve();
  PulseSound sound{kLongestWait};
  AudioObjects& objects = sound.objects();
  const AudioObjectID device = defaultOutput(objects);
};

const auto kBothServers =
    testing::Values(SoundServer::Kind::PulseAudio, SoundServer::Kind::PipeWire);
INSTANTIATE_TEST_SUITE_P(OnBothServers, PulseAudioObjectsTest, kBothServers,
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(OnBothServers, RunningServerTest, kBothServers,
                         testing::PrintToStringParamName());

TEST_P(RunningServerTest, TheDefaultIsFollowedAndIdsAreNeverReused) {
  const AudioObjectID first = device;
  ASSERT_EQ(objects.setPropertyData(first, kMute, 1), platform::noErr);

  std::string module = server.addSink("out2");
  server.makeDefault("sink", "out2");
  ASSERT_TRUE(soon([&] { return defaultOutput(objects) > first; }));
  const AudioObjectID second = defaultOutput(objects);
  EXPECT_EQ(mute(objects, second), 0U);
  EXPECT_EQ(objects.setPropertyData(first, kMute, 0), platform::noErr) << "it is still there";
  EXPECT_EQ(objects.setPropertyData(second, kMute, 1), platform::noErr);
  EXPECT_FALSE(server.sinkMuted("out1"));
  EXPECT_TRUE(server.sinkMuted("out2"));
  server.pactl({"set-sink-mute", "out1", "1"});
  EXPECT_TRUE(soon([&] { return mute(objects, first) == 1U; })) << "by a stranger's hand";

  server.remove(module);
  ASSERT_TRUE(soon([&] { return defaultOutput(objects) == first; })) << "unplugged";
  EXPECT_TRUE(soon([&] { return !mute(objects, second); }));
  EXPECT_EQ(objects.setPropertyData(second, kMute, 1), platform::kAudioHardwareBadObjectError);

  module = server.addSink("out2");
  server.makeDefault("sink", "out2");
  ASSERT_TRUE(soon([&] { return defaultOutput(objects) > second; })) << "plugged in again";
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_P(PulseAudioObjectsTest, WithoutAServerEveryCallSaysSoUntilItsSocketAppears) {
  SoundServer server = serve({"out1"}, SoundServer::Start::Later);
  PulseSound sound{kLongestWait};
  AudioObjects& objects = sound.objects();
  bool settable = true;
  std::uint32_t id = 0;
  EXPECT_FALSE(objects.hasProperty(platform::kAudioObjectSystemObject, kDefaultOutput));
  EXPECT_EQ(objects.propertyData(platform::kAudioObjectSystemObject, kDefaultOutput, id),
            platform::kAudioHardwareNotRunningError);
  EXPECT_EQ(objects.isPropertySettable(2, kMute, settable),
            platform::kAudioHardwareNotRunningError);
  EXPECT_EQ(objects.setPropertyData(2, kMute, 1), platform::kAudioHardwareNotRunningError);
  EXPECT_THAT(warnings(), ElementsAre(HasSubstr("no sound server")));
  QCoreApplication::processEvents();  // now nobody calls, and the watch is all there is

  server.start();
  EXPECT_TRUE(soon([&] {
    return server.pactl({"list", "clients"}).find("\"Calmdeck\"") != std::string::npos;
  })) << "without a call";
  EXPECT_TRUE(soon([&] { return defaultOutput(objects) != 0; }));
}

TEST_P(RunningServerTest, WhatHangsCostsOneWaitAndIsNeverToldLate) {
  // PipeWire's front answers questions from its own memory while the engine behind it hangs, so
  // that the sign of life does not tell.
  const bool hasFront = GetParam() == SoundServer::Kind::PipeWire;
  for (const bool wholly : hasFront ? std::vector{true, false} : std::vector{true}) {
    SCOPED_TRACE(wholly ? "the server" : "its engine");
    ASSERT_EQ(objects.setPropertyData(device, kMute, 0), platform::noErr);
    wholly ? server.stop() : server.stopEngine();
    // A thousand would take minutes, were the second to wait again.
    for (int time = 0; time < 1000; ++time) {
      ASSERT_EQ(objects.setPropertyData(device, kMute, 1), platform::kAudioHardwareNotRunningError);
    }
    EXPECT_EQ(mute(objects, device), wholly ? std::optional(0U) : std::nullopt);
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("does not answer")));

    wholly ? server.cont() : server.contEngine();
    EXPECT_FALSE(server.sinkMuted("out1")) << "what was given up must not happen";
    ASSERT_TRUE(soon([&] { return objects.setPropertyData(device, kMute, 0) == platform::noErr; }));
    EXPECT_EQ(objects.setPropertyData(device, kMute, 1), platform::noErr) << "the same device";
    EXPECT_TRUE(server.sinkMuted("out1"));
  }
}

TEST_P(PulseAudioObjectsTest, AServerThatHangsAtOurStartDelaysNothingButOneCall) {
  SoundServer server = serve();
  server.stop();
  PulseSound sound{kLongestWait};
  AudioObjects& objects = sound.objects();
  EXPECT_THAT(warnings(), IsEmpty()) << "starting does not wait";
  for (int time = 0; time < 1000; ++time) {
    ASSERT_FALSE(objects.hasProperty(platform::kAudioObjectSystemObject, kDefaultOutput));
  }
  EXPECT_THAT(warnings(), ElementsAre(HasSubstr("does not answer")));
  server.cont();
  EXPECT_TRUE(soon([&] { return defaultOutput(objects) != 0; }));
}

TEST_P(RunningServerTest, AKilledServerIsMetAgainWithNewIdsAlsoIfItHungBefore) {
  server.stop();
  EXPECT_EQ(objects.setPropertyData(device, kMute, 1), platform::kAudioHardwareNotRunningError);
  EXPECT_THAT(warnings(), ElementsAre(HasSubstr("does not answer")));
  server.kill();
  EXPECT_TRUE(soon([&] { return defaultOutput(objects) == 0; }));
  EXPECT_EQ(objects.setPropertyData(device, kMute, 1), platform::kAudioHardwareNotRunningError);
  EXPECT_THAT(warnings(), ElementsAre(HasSubstr("sound server"))) << "one line, whatever is called";

  server.start();
  EXPECT_TRUE(soon([&] { return defaultOutput(objects) > device; }));
  EXPECT_EQ(objects.setPropertyData(device, kMute, 1), platform::kAudioHardwareBadObjectError);
  EXPECT_EQ(objects.setPropertyData(defaultOutput(objects), kMute, 1), platform::noErr);
  EXPECT_TRUE(server.sinkMuted("out1"));
}

}  // namespace
