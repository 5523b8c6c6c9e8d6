#include <gmock/gmock.h>

#include <variant>

#include "SoundTest.h"

namespace {

using harness::SoundServer;
using linux_desktop::PulseSound;
using linux_desktop::VolumeControl;
using linux_desktop::VolumeTrouble;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PulseVolumeControlTest : public SoundTest {
 protected:
  // -1 where there is none to read.
  [[nodiscard]] int level() {
    const auto told = volume.inputLevel();
    const int* level = std::get_if<int>(&told);
    return level != nullptr ? *level : -1;
  }
  [[nodiscard]] std::optional<VolumeTrouble> trouble() {
    const auto told = volume.inputLevel();
    const auto* trouble = std::get_if<VolumeTrouble>(&told);
    return trouble != nullptr ? std::optional(*trouble) : std::nullopt;
  }
  // Another program's hand on the channels.
  void turn(const std::string& source, const std::string& left, const std::string& right) {
    server.pactl({"set-source-volume", source, left, right});
  }

  SoundServer server = serve();
  PulseSound sound{kLongestWait};
  VolumeControl& volume = sound.volume();
};

INSTANTIATE_TEST_SUITE_P(OnBothServers, PulseVolumeControlTest,
                         testing::Values(SoundServer::Kind::PulseAudio,
                                         SoundServer::Kind::PipeWire),
                         testing::PrintToStringParamName());

TEST_P(PulseVolumeControlTest, AMuteAndItsEndLeaveTheChannelsAlone) {
  server.addSource("mic");
  const struct {
    const char* left;
    const char* right;
    int level;
  } rows[] = {{"30%", "60%", 60}, {"130%", "65%", 100}, {"1%", "0%", 1}, {"19621", "100", 30}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.left);
    turn("mic", row.left, row.right);
    const std::vector<int> before = server.sourceVolumes("mic");
    ASSERT_EQ(before.size(), 2U);
    ASSERT_TRUE(soon([&] { return level() == row.level; }));
    EXPECT_EQ(volume.setInputLevel(0), std::nullopt);
    EXPECT_EQ(level(), 0) << "at once";
    EXPECT_TRUE(server.sourceMuted("mic")) << "so that a mixer shows it, and can undo it";
    EXPECT_EQ(server.sourceVolumes("mic"), before);
    EXPECT_EQ(volume.setInputLevel(row.level), std::nullopt);
    EXPECT_EQ(level(), row.level);
    EXPECT_FALSE(server.sourceMuted("mic"));
    EXPECT_EQ(server.sourceVolumes("mic"), before);
  }
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_P(PulseVolumeControlTest, AnotherLevelIsReadAsItWasSetAndKeepsTheBalance) {
  server.addSource("mic");
  turn("mic", "30%", "60%");
  ASSERT_TRUE(soon([&] { return level() == 60; }));
  for (int wanted = 100; wanted >= 0; --wanted) {
    EXPECT_EQ(volume.setInputLevel(wanted), std::nullopt);
    EXPECT_EQ(level(), wanted);
  }
  EXPECT_EQ(volume.setInputLevel(80), std::nullopt);
  EXPECT_FALSE(server.sourceMuted("mic"));
  const std::vector<int> channels = server.sourceVolumes("mic");
  ASSERT_EQ(channels.size(), 2U);
  EXPECT_NEAR(channels[1], 0.8 * 65536, 1);
  EXPECT_NEAR(channels[0], 0.4 * 65536, 655) << "but for what a level of 1 rounds off";
  EXPECT_EQ(volume.setInputLevel(80), std::nullopt);
  EXPECT_EQ(server.sourceVolumes("mic"), channels);
}

TEST_P(PulseVolumeControlTest, WhatOthersDoIsFollowed) {
  server.addSource("mic");
  turn("mic", "35%", "35%");
  ASSERT_TRUE(soon([&] { return level() == 35; }));
  ASSERT_EQ(volume.setInputLevel(0), std::nullopt);
  turn("mic", "50%", "50%");
  server.pactl({"set-source-mute", "mic", "0"});
  EXPECT_TRUE(soon([&] { return level() == 50; })) << "unmuted by a mixer";

  const std::string other = server.addSource("headset");
  turn("headset", "70%", "70%");
  ASSERT_TRUE(soon([&] { return level() == 70; })) << "another default";
  EXPECT_EQ(volume.setInputLevel(0), std::nullopt);
  EXPECT_TRUE(server.sourceMuted("headset"));
  EXPECT_FALSE(server.sourceMuted("mic"));
  server.remove(other);
  EXPECT_TRUE(soon([&] { return level() == 50; })) << "unplugged";
}

TEST_P(PulseVolumeControlTest, WhatTheSpeakersPlayIsNoMicrophone) {
  EXPECT_EQ(trouble(), VolumeTrouble::NoMicrophone) << "there is none";
  EXPECT_EQ(volume.setInputLevel(0), VolumeTrouble::NoMicrophone);
  server.addSource("mic");
  ASSERT_TRUE(soon([&] { return level() == 100; }));
  server.pactl({"set-default-source", "out1.monitor"});
  EXPECT_TRUE(soon([&] { return trouble() == VolumeTrouble::NoMicrophone; }))
      << "there is one, but a monitor is the default";
  EXPECT_EQ(volume.setInputLevel(0), VolumeTrouble::NoMicrophone);
  EXPECT_FALSE(server.sourceMuted("out1.monitor"));
  EXPECT_FALSE(server.sourceMuted("mic"));
  EXPECT_THAT(warnings(), IsEmpty());
}

}  // namespace
