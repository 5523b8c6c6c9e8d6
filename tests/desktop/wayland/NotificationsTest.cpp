// Do Not Disturb of the daemons that need a Wayland compositor.

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desktop/wayland/ModeDesk.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr std::uint32_t kBubble = 0x12ab34;

/// The mode asks for quiet and does nothing else.
class WaylandDaemonTest : public testing::Test, public wayland_test::ModeDesk {
 protected:
  /// `path` and `interface` are of the daemon's own methods, of which one answers with that word
  /// while it is quiet.
  WaylandDaemonTest(std::string path, std::string interface, std::string method, std::string word)
      : ModeDesk({}),
        path_(std::move(path)),
        interface_(std::move(interface)),
        method_(std::move(method)),
        word_(std::move(word)) {}

  std::string ask(const std::string& method, const std::vector<std::string>& arguments = {}) {
    const auto answer = desk.bus().call(kName, path_, interface_ + "." + method, arguments);
    EXPECT_TRUE(answer) << method;
    return answer.value_or("");
  }
  /// Waits until the answer holds a word, or does not.
  [[nodiscard]] bool answers(const std::string& method, const std::string& word,
                             bool wanted = true) {
    return desk.until([&] { return (ask(method).find(word) != std::string::npos) == wanted; });
  }
  [[nodiscard]] bool becomesQuiet(bool quiet) { return answers(method_, word_, quiet); }

  void startDaemon(const std::vector<std::string>& argv) {
    daemon_.reset();
    ASSERT_TRUE(desk.until([&] { return !desk.bus().hasOwner(kName); }));
    daemon_ = desk.start(argv);
    ASSERT_TRUE(desk.until([&] { return desk.bus().hasOwner(kName); }));
  }
  [[nodiscard]] bool bubbleIs(bool shown) const {
    return desk.until([&] { return desk.areaOf(kBubble).has_value() == shown; });
  }

 private:
  std::string path_, interface_, method_, word_;
  std::unique_ptr<harness::Process> daemon_;
};

class MakoTest : public WaylandDaemonTest {
 protected:
  MakoTest()
      : WaylandDaemonTest("/fr/emersion/Mako", "fr.emersion.Mako", "ListModes", "do-not-disturb") {}

  static constexpr const char* kColour = "background-color=#12ab34\n";
  static constexpr const char* kSection =
      "[app-name=\"other\"]\ninvisible=1\n[mode=\"do-not-disturb\"]\ninvisible=1\n";
};

TEST_F(MakoTest, HoldsNotificationsBackAndKeepsTheUsersOtherModes) {
  desk.home().writeConfig("mako/config", std::string(kColour) + kSection);
  startDaemon({"mako"});
  ask("SetModes", {"array:string:default,away"});
  launch("Dnd");
  toggle();
  ASSERT_TRUE(becomesQuiet(true));
  desk.notify("held back");
  ASSERT_TRUE(answers("ListNotifications", "held back"));
  EXPECT_FALSE(desk.areaOf(kBubble));
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
  desk.notify("shown");
  EXPECT_TRUE(bubbleIs(true));
  EXPECT_THAT(program->lines("calmdeck.notifications", harness::Stream::Error), IsEmpty());
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
  EXPECT_TRUE(becomesQuiet(false));
  toggle();
  startDaemon({"mako", "--config", desk.home().config() / "mako/other"});
  toggle();
  EXPECT_TRUE(becomesQuiet(true)) << "the file that its command line names counts";
}

class SwayncTest : public WaylandDaemonTest {
 protected:
  SwayncTest()
      : WaylandDaemonTest("/org/erikreider/swaync/cc", "org.erikreider.swaync.cc", "GetDnd",
                          "true") {}
};

TEST_F(SwayncTest, HoldsNotificationsBackAndFollowsTheUser) {
  desk.home().writeConfig("swaync/style.css", "* { background: #12ab34; }\n");
  const std::vector<std::string> command{"swaync", "-s", desk.home().config() / "swaync/style.css"};
  startDaemon(command);
  launch("Dnd");
  toggle();
  ASSERT_TRUE(becomesQuiet(true));
  desk.notify("held back");
  ASSERT_TRUE(answers("NotificationCount", "uint32 1"));
  EXPECT_FALSE(desk.areaOf(kBubble));
  ask("SetDnd", {"boolean:false"});
  toggle();
  toggle();
  EXPECT_TRUE(becomesQuiet(true)) << "the user had switched it off";
  startDaemon(command);
  EXPECT_TRUE(becomesQuiet(true));
  toggle();
  EXPECT_TRUE(becomesQuiet(false));
  desk.notify("shown");
  EXPECT_TRUE(bubbleIs(true));
  EXPECT_THAT(program->lines("calmdeck.notifications", harness::Stream::Error), IsEmpty());
}

}  // namespace
