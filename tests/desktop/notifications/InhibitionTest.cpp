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
  [[nodiscard]] bool becomes(bool inhibited) {
    return desk.desk().until([&] {
      const auto answer = desk.desk().bus().property(kName, kPath, kName, "Inhibited");
      return answer && answer->find(inhibited ? "true" : "false") != std::string::npos;
    });
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

TEST_F(InhibitionTest, SomebodyElsesStays) {
  start("Plasma", "KDE");
  desk.startProbe();
  ASSERT_TRUE(desk.desk().bus().call(kName, kPath, std::string(kName) + ".Inhibit",
                                     {"string:other", "string:quiet", "dict:string:string:"}));
  ASSERT_TRUE(desk.turn("on"));
  EXPECT_TRUE(becomes(true));
  ASSERT_TRUE(desk.turn("off"));
  EXPECT_TRUE(desk.scriptFailed(-10000)) << "none is ours: it was quiet already";
  desk.quitProbe();
  EXPECT_EQ(desk.complaints("switched on by somebody else; Plasma keeps it on"), 1);
}

}  // namespace
