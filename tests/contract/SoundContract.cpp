#include "contract/ContractDesk.h"

namespace contract {
namespace {

using namespace platform;

constexpr AudioObjectPropertyAddress kDefaultOutput{kAudioHardwarePropertyDefaultOutputDevice,
                                                    kAudioObjectPropertyScopeGlobal, 0};
constexpr AudioObjectPropertyAddress kMute{kAudioDevicePropertyMute,
                                           kAudioDevicePropertyScopeOutput, 0};

/// The sound of a desk as the port tells it.
class Sound {
 public:
  explicit Sound(ContractDesk& desk) : desk_(desk) {}

  [[nodiscard]] port::AudioObjects& objects() { return *desk_.desktop().audioObjects; }
  /// False when the port does not come to tell of it.
  [[nodiscard]] bool setDevice(bool present) {
    desk_.setOutputDevice(present);
    return desk_.runUntil(
        [&] { return objects().hasProperty(kAudioObjectSystemObject, kDefaultOutput) == present; });
  }
  [[nodiscard]] AudioObjectID device() {
    std::uint32_t value = 0;
    EXPECT_EQ(objects().propertyData(kAudioObjectSystemObject, kDefaultOutput, value), noErr);
    return value;
  }
  [[nodiscard]] std::optional<std::uint32_t> mute(AudioObjectID object) {
    std::uint32_t value = 77;
    if (objects().propertyData(object, kMute, value) == noErr) return value;
    EXPECT_EQ(value, 77U) << "written without success";
    return std::nullopt;
  }

 private:
  ContractDesk& desk_;
};

TEST_P(DesktopContract, TheDefaultDeviceHasAMuteThatCanBeWrittenAndFollowsOthers) {
  ASSERT_NE(desk().desktop().audioObjects, nullptr);
  Sound sound(desk());
  ASSERT_TRUE(sound.setDevice(true));
  const AudioObjectID speakers = sound.device();
  EXPECT_NE(speakers, kAudioObjectSystemObject);
  EXPECT_TRUE(sound.objects().hasProperty(speakers, kMute));
  bool settable = false;
  EXPECT_EQ(sound.objects().isPropertySettable(speakers, kMute, settable), noErr);
  EXPECT_TRUE(settable);
  EXPECT_EQ(sound.mute(speakers), std::optional(0U));
  // Each twice: what would change nothing succeeds too.
  for (const std::uint32_t value : {1U, 1U, 0U, 0U}) {
    EXPECT_EQ(sound.objects().setPropertyData(speakers, kMute, value), noErr);
    EXPECT_EQ(sound.mute(speakers), std::optional(value));
    EXPECT_EQ(desk().isMuted(), value == 1);
  }
  EXPECT_EQ(sound.device(), speakers);
  for (const bool muted : {true, false}) {
    desk().muteFromOutside(muted);
    EXPECT_TRUE(desk().runUntil([&] { return sound.mute(speakers) == (muted ? 1U : 0U); }));
  }
}

TEST_P(DesktopContract, ADeviceThatWentIsNotMistakenForAnother) {
  ASSERT_NE(desk().desktop().audioObjects, nullptr);
  Sound sound(desk());
  ASSERT_TRUE(sound.setDevice(true));
  const AudioObjectID old = sound.device();
  ASSERT_TRUE(sound.setDevice(false));
  EXPECT_FALSE(sound.objects().hasProperty(kAudioObjectSystemObject, kDefaultOutput));
  std::uint32_t value = 77;
  EXPECT_NE(sound.objects().propertyData(kAudioObjectSystemObject, kDefaultOutput, value), noErr);
  EXPECT_EQ(value, 77U);
  EXPECT_FALSE(sound.objects().hasProperty(old, kMute));
  EXPECT_FALSE(sound.mute(old));
  EXPECT_NE(sound.objects().setPropertyData(old, kMute, 1), noErr);
  ASSERT_TRUE(sound.setDevice(true));
  EXPECT_NE(sound.device(), old);
  EXPECT_FALSE(sound.objects().hasProperty(old, kMute));
  EXPECT_FALSE(desk().isMuted());
}

TEST_P(DesktopContract, WhatIsUnknownIsAnsweredWithAStatus) {
  Sound sound(desk());
  ASSERT_TRUE(sound.setDevice(true));
  const AudioObjectID speakers = sound.device();
  const std::pair<AudioObjectID, AudioObjectPropertyAddress> rows[] = {
      {kAudioObjectSystemObject, kMute},
      {speakers, kDefaultOutput},
      {speakers, {kAudioDevicePropertyMute, kAudioObjectPropertyScopeGlobal, 0}},
      {speakers, {kAudioDevicePropertyMute, kAudioDevicePropertyScopeOutput, 1}},
      {0, kMute},
  };
  for (const auto& [object, address] : rows) {
    SCOPED_TRACE(std::to_string(object) + " " + description(address));
    bool settable = true;
    std::uint32_t value = 77;
    EXPECT_FALSE(sound.objects().hasProperty(object, address));
    EXPECT_NE(sound.objects().isPropertySettable(object, address, settable), noErr);
    EXPECT_NE(sound.objects().propertyData(object, address, value), noErr);
    EXPECT_NE(sound.objects().setPropertyData(object, address, 1), noErr);
    EXPECT_EQ(value, 77U);
  }
  EXPECT_EQ(sound.mute(speakers), std::optional(0U));
}

}  // namespace
}  // namespace contract
