#include "contract/DesktopContract.h"
#include "platform/applescript/RunScript.h"

namespace contract {
namespace {

using platform::Value;
using platform::applescript::ScriptFailure;

constexpr const char* kRead =
    "    tell application \"System Events\"\n"
    "        set storedInputLevel to input volume of (get volume settings)\n"
    "    end tell";
constexpr const char* kMute =
    "    set volume input volume 0\n    display notification \"Mic muted\"";

std::string unmute(const std::string& level) {
  return "    set volume input volume " + level + "\n    display notification \"Mic unmuted\"";
}

/// The microphone as the scripts of its shortcut see it and turn it.
class MicrophoneScripts {
 public:
  explicit MicrophoneScripts(ContractDesk& desk) : desk_(desk) {}

  /// None where the script fails or gives a missing value.
  [[nodiscard]] std::optional<std::int64_t> level() {
    const auto outcome = run(kRead);
    const auto* value = std::get_if<std::optional<Value>>(&outcome);
    return value != nullptr && *value ? (*value)->as<std::int64_t>() : std::nullopt;
  }
  [[nodiscard]] bool becomes(std::optional<std::int64_t> wanted) {
    return desk_.runUntil([&] { return level() == wanted; });
  }
  /// A desk without anything that shows notifications fails at the second line. The first has been
  /// carried out by then.
  void turn(const std::string& script) { static_cast<void>(run(script)); }
  [[nodiscard]] bool fails(const std::string& script) {
    return std::holds_alternative<ScriptFailure>(run(script));
  }

 private:
  [[nodiscard]] platform::applescript::ScriptOutcome run(const std::string& script) {
    return platform::applescript::runScript(script, desk_.desktop().automation());
  }

  ContractDesk& desk_;
};

TEST_P(DesktopContract, TheMicrophoneIsMutedAndGetsItsLevelBackByScripts) {
  ASSERT_NE(desk().desktop().automation(), nullptr);
  MicrophoneScripts scripts(desk());
  desk().setMicrophone(35);
  ASSERT_TRUE(scripts.becomes(35));
  // Each twice: what would change nothing succeeds too.
  for (int time = 0; time < 2; ++time) {
    scripts.turn(kMute);
    EXPECT_EQ(scripts.level(), 0);
    EXPECT_EQ(desk().microphoneLevel(), 0);
  }
  for (const int level : {35, 35, 100, 1}) {
    scripts.turn(unmute(std::to_string(level)));
    EXPECT_EQ(scripts.level(), level);
    EXPECT_EQ(desk().microphoneLevel(), level);
  }
}

TEST_P(DesktopContract, WithoutAMicrophoneThereIsNoLevelToReadOrToSet) {
  ASSERT_NE(desk().desktop().automation(), nullptr);
  MicrophoneScripts scripts(desk());
  desk().setMicrophone(std::nullopt);
  ASSERT_TRUE(scripts.becomes(std::nullopt));
  EXPECT_TRUE(scripts.fails("set volume input volume 40"));
  desk().setMicrophone(60);
  EXPECT_TRUE(scripts.becomes(60));
}

}  // namespace
}  // namespace contract
