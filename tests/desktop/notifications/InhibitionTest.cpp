#include <gtest/gtest.h>

#include <string>

#include "DoNotDisturbDesk.h"

namespace {

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

/// By a daemon that offers inhibitions, which is Plasma or unknown.
class InhibitionTest : public ::testing::Test {
 protected:
  void start(const std::string& name, const std::string& vendor) {
    daemon_.reset();
    daemon_ = desk.desk().start({INHIBITION_DAEMON, name, vendor});
    ASSERT_TRUE(desk.desk().until([&] { return desk.desk().bus().hasOwner(kName); }));
  }
  [[nodiscard]] bool is(bool inhibited) {
    const auto answer = desk.desk().bus().property(kName, kPath, kName, "Inhibited");
    return answer && answer->find(inhibited ? "true" : "false") != std::string::npos;
  }
  [[nodiscard]] bool becomes(bool inhibited) {
    return desk.desk().until([&] { return is(inhibited); });
  }

  void ask(const std::string& method, const std::vector<std::string>& arguments) {
    ASSERT_TRUE(desk.desk().bus().call(kName, kPath, std::string(kName) + "." + method, arguments));
  }

  DoNotDisturbDesk desk{{}};

 private:
  std::unique_ptr<harness::Process> daemon_;
};

TEST_F(InhibitionTest, IsHeldWhileItIsWantedAndTakenAgainAfterARestart) {
  start("Plasma", "KDE");
  desk.startProbe();
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(desk.turn("on"));
    EXPECT_TRUE(becomes(true));
    ASSERT_TRUE(desk.turn("off"));
    EXPECT_TRUE(becomes(false));
  }
  ASSERT_TRUE(desk.turn("on"));
  start("quiet", "somebody");
  EXPECT_TRUE(becomes(true)) << "what it can do counts, not its name";
  desk.quitProbe();
  EXPECT_EQ(desk.scriptErrors(), "");
}

TEST_F(InhibitionTest, OursIsTakenBesideSomebodyElsesAndOnlyOursIsEnded) {
  start("Plasma", "KDE");
  desk.startProbe();
  ask("Inhibit", {"string:other", "string:quiet", "dict:string:string:"});
  ASSERT_TRUE(desk.turn("on"));
  ask("UnInhibit", {"uint32:1"});
  EXPECT_TRUE(becomes(true)) << "the mode is still on";
  ask("Inhibit", {"string:other", "string:quiet", "dict:string:string:"});
  ASSERT_TRUE(desk.turn("off"));
  EXPECT_TRUE(becomes(true));
  ask("UnInhibit", {"uint32:3"});
  EXPECT_TRUE(becomes(false));
  desk.quitProbe();
  EXPECT_EQ(desk.scriptErrors(), "");
  EXPECT_EQ(desk.complaints(), 0);
}

TEST_F(InhibitionTest, IsTakenAgainWhenTheUserHasEndedAll) {
  start("Plasma", "KDE");
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  ASSERT_TRUE(becomes(true));
  ask("EndAll", {});
  ASSERT_TRUE(becomes(false));
  // More than once, as the probe may hear of the end a little later than we do.
  EXPECT_TRUE(desk.desk().until([&] { return desk.turn("on") && is(true); }));
}

}  // namespace
