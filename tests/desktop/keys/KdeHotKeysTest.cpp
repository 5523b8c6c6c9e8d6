// Hot keys on KDE, where its own service keeps them.

#include <array>
#include <chrono>
#include <thread>

#include "desktop/keys/KeysDesk.h"

namespace {

using namespace platform;
using namespace place;
using namespace std::chrono_literals;

constexpr std::uint32_t kControlAlt = controlKey | optionKey;
constexpr const char* kService = "org.kde.kglobalaccel";
constexpr const char* kServicePath = "/kglobalaccel";
constexpr const char* kKey = "201326672";  // Control+Alt+P as the service has it

/// As each release of KDE names it.
const char* serviceProgram() {
  for (const char* program :
       {"/usr/bin/kglobalaccel5", "/usr/lib/x86_64-linux-gnu/libexec/kglobalacceld"}) {
    if (std::filesystem::exists(program)) return program;
  }
  return nullptr;
}

class KdeHotKeys : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(serviceProgram(), nullptr) << "KDE's service is not installed";
    std::filesystem::remove(keys.desk().home().config() / "kglobalshortcutsrc");
    startService();
  }

  void startService() {
    service = keys.desk().start({serviceProgram()});
    ASSERT_TRUE(keys.until([&] {
      return bus.hasOwner(kService) &&
             bus.call(kService, kServicePath, "org.freedesktop.DBus.Peer.Ping", {});
    }));
  }
  /// What the settings page lists of ours.
  [[nodiscard]] std::string listed() {
    return bus
        .call(kService, "/component/calmdeck", "org.kde.kglobalaccel.Component.allShortcutInfos",
              {})
        .value_or("");
  }
  [[nodiscard]] bool isTaken() {
    const auto answer =
        bus.call(kService, kServicePath, "org.kde.KGlobalAccel.isGlobalShortcutAvailable",
                 {std::string("int32:") + kKey, "string:other"});
    return answer && answer->find("boolean false") != std::string::npos;
  }

  /// Held as long as it takes, and for some repeats.
  [[nodiscard]] bool pressIsReported(int repeats) {
    for (const std::uint8_t place : {kControl, kAlt, kP}) keys.input().placeDown(place);
    bool reported = keys.hears({"pressed 1"});
    for (int i = 0; i < repeats; ++i) reported = reported && keys.repeats();
    for (const std::uint8_t place : {kP, kAlt, kControl}) keys.input().placeUp(place);
    return reported && keys.hears({"released 1"});
  }

  /// Held no longer than by the quickest of people, whoever may have seen it by then. Of a press of
  /// no length at all the service tells the release late or never.
  void tap(const std::array<std::uint8_t, 3>& places) {
    for (const std::uint8_t place : places) keys.input().placeDown(place);
    std::this_thread::sleep_for(30ms);
    for (const std::uint8_t place : places) keys.input().placeUp(place);
  }

  std::optional<KeysDesk> program{std::in_place, "KDE"};
  KeysDesk& keys = *program;
  harness::SessionBus& bus = keys.desk().bus();
  std::unique_ptr<harness::Process> service;
};

TEST_F(KdeHotKeys, TheyAreKdesOwnAndReportedOnceHoweverLongTheyAreHeld) {
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  EXPECT_NE(listed().find("Calmdeck"), std::string::npos) << listed();
  EXPECT_NE(listed().find("Does something"), std::string::npos) << listed();
  EXPECT_NE(listed().find(kKey), listed().rfind(kKey)) << "the default too: " << listed();
  EXPECT_TRUE(isTaken());
  EXPECT_EQ(keys.registers(2, kVK_ANSI_P, kControlAlt), eventHotKeyExistsErr);
  EXPECT_TRUE(pressIsReported(0));
  EXPECT_TRUE(pressIsReported(3)) << "held";

  keys.unregister(1);
  EXPECT_TRUE(keys.until([&] { return !isTaken(); }));
  EXPECT_EQ(listed().find("Ctrl+Alt+P"), std::string::npos) << listed();
}

TEST_F(KdeHotKeys, PressesThatKeepTheServiceWaitingAreReportedOnceEach) {
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  // With the first key the server changes keyboards, and the service grabs anew.
  ASSERT_TRUE(pressIsReported(0));
  for (std::size_t presses = 1; presses < 4; ++presses) {
    service->freeze();
    tap({kControl, kAlt, kP});
    service->thaw();
    EXPECT_TRUE(keys.until([&] { return keys.presses() == presses; })) << presses;
  }
}

TEST_F(KdeHotKeys, KeysGivenOnTheSettingsPageCountUntilTheNextRegistration) {
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  ASSERT_TRUE(
      bus.call(kService, kServicePath, "org.kde.KGlobalAccel.setForeignShortcut",
               {"array:string:calmdeck,Control+Alt+p,Calmdeck,Shortcut", "array:int32:201326681"}));
  EXPECT_FALSE(isTaken());
  tap({kControl, kAlt, kY});
  EXPECT_TRUE(keys.hears({"pressed 1", "released 1"}));
  EXPECT_TRUE(keys.passes({kControl, kAlt, kP}));

  keys.unregister(1);
  ASSERT_EQ(keys.registers(2, kVK_ANSI_P, kControlAlt), noErr);
  EXPECT_TRUE(isTaken());
}

TEST_F(KdeHotKeys, WhatAnotherProgramOfKdeHasIsRefused) {
  const std::string identity = "array:string:other,x,Other,X";
  ASSERT_TRUE(bus.call(kService, kServicePath, "org.kde.KGlobalAccel.doRegister", {identity}));
  ASSERT_TRUE(bus.call(kService, kServicePath, "org.kde.KGlobalAccel.setShortcut",
                       {identity, std::string("array:int32:") + kKey, "uint32:6"}));
  EXPECT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), eventHotKeyExistsErr);
  EXPECT_EQ(keys.registers(2, kVK_ANSI_M, kControlAlt), noErr);
}

TEST_F(KdeHotKeys, AServiceThatStartsAnewIsToldAgain) {
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  service->kill();
  ASSERT_TRUE(keys.until([&] { return !bus.hasOwner(kService); }));
  startService();
  ASSERT_TRUE(keys.until([&] { return isTaken(); }));
  EXPECT_TRUE(pressIsReported(0));
}

TEST_F(KdeHotKeys, TheyAreNobodysWhenTheProgramHasEnded) {
  const auto areActive = [this] {
    const auto told =
        bus.call(kService, "/component/calmdeck", "org.kde.kglobalaccel.Component.isActive", {});
    return told && told->find("true") != std::string::npos;
  };
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  EXPECT_TRUE(areActive());
  program.reset();
  EXPECT_FALSE(areActive());
}

TEST_F(KdeHotKeys, WhereTheServiceHangsOrCannotNameThemTheKeyboardIsGrabbed) {
  ASSERT_EQ(keys.registers(1, kVK_ANSI_1, kControlAlt | shiftKey), noErr);
  EXPECT_TRUE(keys.fires(1, {kControl, kAlt, kShift, k1})) << "Shift with a digit";

  service->freeze();
  // The bus itself waits for 25 seconds, longer than all else here.
  ASSERT_EQ(keys.registers(2, kVK_ANSI_P, kControlAlt), noErr);
  EXPECT_TRUE(keys.fires(2, {kControl, kAlt, kP}));
}

}  // namespace
