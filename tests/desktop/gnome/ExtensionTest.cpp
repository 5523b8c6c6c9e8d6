#include <gmock/gmock.h>

#include "desktop/gnome/GnomeDesk.h"

using gnome_test::GnomeDesk;

namespace {

constexpr const char* kShell = "org.calmdeck.Shell";
constexpr const char* kPath = "/org/calmdeck/Shell";

TEST(GnomeExtensionTest, ServesTheProgramAndNobodyElse) {
  GnomeDesk desk({.monitors = 1});
  desk.openWindow("red", "#d02010");
  desk.launch({"HideActiveApps"});
  ASSERT_TRUE(desk.bus().hasOwner(kShell));
  EXPECT_FALSE(desk.bus().call(kShell, kPath, "org.calmdeck.Shell.Windows.Hide", {}));
  EXPECT_EQ(desk.windows(), "red*");
  desk.toggleMode();
  EXPECT_TRUE(desk.until([&] { return desk.windows().empty(); }));
}

TEST(GnomeExtensionTest, IsUsedFromTheNextLoginOnWhereTheShellDoesNotKnowIt) {
  GnomeDesk desk({.monitors = 1, .extension = false});
  desk.installExtension();
  desk.launch({"HideActiveApps"});
  EXPECT_TRUE(desk.program().waitForLine("until the next login", harness::kPatience,
                                         harness::Stream::Error));
}

}  // namespace
