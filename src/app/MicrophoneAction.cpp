#include "app/MicrophoneAction.h"

#include <string_view>
#include <utility>

#include "platform/Runtime.h"
#include "platform/foundation/Process.h"
#include "platform/foundation/SmallValues.h"
#include "shared/ScriptRunner.h"

namespace app {
namespace {

constexpr std::string_view kReadScript =
    "    tell application \"System Events\"\n"
    "        set storedInputLevel to input volume of (get volume settings)\n"
    "    end tell";
constexpr std::string_view kMuteScript =
    "    set volume input volume 0\n"
    "    display notification \"Mic muted\"";
constexpr std::string_view kUnmuteFirstPiece = "    set volume input volume ";
constexpr std::string_view kUnmuteLastPiece = "\n    display notification \"Mic unmuted\"";

static_assert(kReadScript.size() == 119);
static_assert(kMuteScript.size() == 66);
static_assert(kUnmuteFirstPiece.size() == 28);
static_assert(kUnmuteLastPiece.size() == 39);

/// Kept for the life of the process and no longer.
struct MicrophoneState {
  std::string lastInputLevel = "100";
};

std::string& lastInputLevel() {
  return platform::Runtime::current().instance<MicrophoneState>()->lastInputLevel;
}

/// What the script gave, as text. What goes wrong is printed.
std::optional<std::string> run(std::string source) {
  shared::ScriptResult result = shared::scriptResult(std::move(source));
  if (result.error) platform::print(platform::description(*result.error));
  return std::move(result.text);
}

std::string unmuteScript() {
  return std::string(kUnmuteFirstPiece) + lastInputLevel() + std::string(kUnmuteLastPiece);
}

}  // namespace

std::optional<std::string> readInputVolume() {
  return run(std::string(kReadScript));
}

void muteMicPressed() {
  platform::print("Pressed at " + platform::NSDate::date().description());
  const std::optional<std::string> level = readInputVolume();
  if (!level) return;
  platform::print("mic value is");
  platform::print(*level);
  if (*level == "0") {
    run(unmuteScript());
    return;
  }
  lastInputLevel() = *level;
  run(std::string(kMuteScript));
}

}  // namespace app
