#include "desktop/harness/XDesk.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace harness {
namespace {

// A descendant that was given this desktop's folders, as ps tells it.
bool somebodyLivesIn(const std::string& runtimeFolder) {
  const RunResult list = runToEnd({{"ps", "axeww", "-o", "args"}});
  return list.output.find("XDG_RUNTIME_DIR=" + runtimeFolder) != std::string::npos;
}

TEST(XDesk, NothingIsLeftBehind) {
  std::filesystem::path runtime;
  {
    const XDesk desk({.windowManager = WindowManager::Xfwm4, .panel = Panel::XfcePanel});
    runtime = desk.home().runtime();
    // One that slips out of its process group, as daemons do.
    ASSERT_TRUE(desk.run({"setsid", "--fork", "sleep", "1000"}).succeeded());
    ASSERT_TRUE(somebodyLivesIn(runtime));
  }
  EXPECT_FALSE(somebodyLivesIn(runtime));
  EXPECT_FALSE(std::filesystem::exists(runtime.parent_path()));
}

}  // namespace
}  // namespace harness
