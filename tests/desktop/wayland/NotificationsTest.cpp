// Do Not Disturb of the daemons that need a Wayland compositor.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desktop/wayland/ModeDesk.h"

namespace {

using testing::HasSubstr;

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr std::uint32_t kBubble = 0x12ab34;

/// The mode asks for quiet and does nothing else.
class WaylandDaemonTest : public testing::Test, public wayland_test::ModeDesk {
 protected:
  /// `path` and `interface` are of the daemon's own methods.
  WaylandDaemonTest(std::string path, std::string interface)
      : ModeDesk({}), path_(std::move(path)), interface_(std::move(interface)) {}

  std::string ask(const std::string& method, const std::vector<std::string>& arguments = {}) {
    const auto answer = desk.bus().call(kName, path_, interface_ + "." + method, arguments);
    EXPECT_TRUE(answer) << method;
    return answer.value_or("");
  }

  void startDaemon(const std::vector<std::string>& argv) {
    daemon_.reset();
    ASSERT_TRUE(desk.until([&] { return !desk.bus().hasOwner(kName); }));
    daemon_ = desk.start(argv);
    ASSERT_TRUE(desk.until([&] { return desk.bus().hasOwner(kName); }));
  }
  void notify(const std::string& summary) {
    ASSERT_TRUE(
        desk.run({"gdbus", "call", "--session", "--dest", kName, "--object-path",
                  "/org/freedesktop/Notifications", "--method", std::string(kName) + ".Notify",
                  "test", "0", "", summary, "", "[]", "{}", "0"})
            .succeeded());
  }
  [[nodiscard]] bool showsBubble() const { return desk.areaOf(kBubble).has_value(); }
  [[nodiscard]] bool bubbleIs(bool shown) const {
    return desk.until([&] { return showsBubble() == shown; });
  }
  void expectNoComplaint() {
    EXPECT_THAT(program->errorOutput(), testing::Not(HasSubstr("calmdeck.notifications:")));
  }

 private:
  std::string path_;
  std::string interface_;
  std::unique_ptr<harness::Process> daemon_;
};

class MakoTest : public WaylandDaemonTest {
 protected:
  static constexpr const char* kColour = "background-color=#12ab34\n";
  static constexpr const char* kSection =
      "[app-name=\"other\"]\ninvisible=1\n[mode=\"do-not-disturb\"]\ninvisible=1\n";

  MakoTest() : WaylandDaemonTest("/fr/emersion/Mako", "fr.emersion.Mako") {}

  [[nodiscard]] bool isQuiet() {
    return ask("ListModes").find("do-not-disturb") != std::string::npos;
  }
  [[nodiscard]] bool becomesQuiet(bool quiet) {
    return desk.until([&] { return isQuiet() == quiet; });
  }
};

TEST_F(MakoTest, HoldsNotificationsBackAndKeepsTheUsersOtherModes) {
  desk.home().writeConfig("mako/config", std::string(kColour) + kSection);
  startDaemon({"mako"});
  ask("SetModes", {"array:string:default,away"});
  launch("Dnd");
  toggle();
  ASSERT_TRUE(becomesQuiet(true));
  notify("held back");
  ASSERT_TRUE(
      desk.until([&] { return ask("ListNotifications").find("held back") != std::string::npos; }));
  EXPECT_FALSE(showsBubble());
  ask("SetModes", {"array:string:default,away"});
  EXPECT_TRUE(bubbleIs(true)) << "switched off by hand, which mako tells nobody";
  toggle();
  toggle();
  EXPECT_TRUE(bubbleIs(false));
  startDaemon({"mako"});
  EXPECT_TRUE(becomesQuiet(true)) << "mako itself forgets";
  ask("SetModes", {"array:string:default,away,do-not-disturb"});
  toggle();
  EXPECT_TRUE(becomesQuiet(false));
  EXPECT_THAT(ask("ListModes"), HasSubstr("away"));
  notify("shown");
  EXPECT_TRUE(bubbleIs(true));
  expectNoComplaint();
}

TEST_F(MakoTest, IsRefusedWhereItsConfigurationSilencesNothing) {
  desk.home().writeConfig("mako/config",
                          std::string(kColour) + "[mode=do-not-disturb]\nfont=mono\n");
  desk.home().writeConfig("mako/other", std::string(kColour) + kSection);
  startDaemon({"mako"});
  launch("Dnd");
  toggle();
  EXPECT_TRUE(
      program->complains("mako/config has no section .mode=do-not-disturb. with invisible=1"));
  EXPECT_FALSE(isQuiet());
  toggle();
  startDaemon({"mako", "--config", desk.home().config() / "mako/other"});
  toggle();
  EXPECT_TRUE(becomesQuiet(true)) << "the file that its command line names counts";
}

class SwayncTest : public WaylandDaemonTest {
 protected:
  SwayncTest() : WaylandDaemonTest("/org/erikreider/swaync/cc", "org.erikreider.swaync.cc") {}

  [[nodiscard]] bool becomesQuiet(bool quiet) {
    return desk.until([&] { return (ask("GetDnd").find("true") != std::string::npos) == quiet; });
  }
};

TEST_F(SwayncTest, HoldsNotificationsBackAndFollowsTheUser) {
  desk.home().writeConfig("swaync/style.css", "* { background: #12ab34; }\n");
  const std::vector<std::string> command{"swaync", "-s", desk.home().config() / "swaync/style.css"};
  startDaemon(command);
  launch("Dnd");
  toggle();
  ASSERT_TRUE(becomesQuiet(true));
  notify("held back");
  ASSERT_TRUE(
      desk.until([&] { return ask("NotificationCount").find("uint32 1") != std::string::npos; }));
  EXPECT_FALSE(showsBubble());
  ask("SetDnd", {"boolean:false"});
  toggle();
  toggle();
  EXPECT_TRUE(becomesQuiet(true)) << "the user had switched it off";
  startDaemon(command);
  EXPECT_TRUE(becomesQuiet(true));
  toggle();
  EXPECT_TRUE(becomesQuiet(false));
  notify("shown");
  EXPECT_TRUE(bubbleIs(true));
  expectNoComplaint();
}

}  // namespace
