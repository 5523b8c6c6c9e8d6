#include "desktop/linux/tray/ItemMenu.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "desktop/harness/EventLoopTest.h"
#include "platform/port/Windows.h"

namespace {

using linux_desktop::MenuOpening;
using Sign = MenuOpening::Sign;

/// Writes down what it is told, and attaches its menu at once unless it is busy.
class Client final : public platform::port::StatusItemClient {
 public:
  void statusItemClicked(platform::NSEventType type) override {
    told += type == platform::NSEventType::RightMouseUp ? "right " : "left ";
    if (!busy) opening.attach();
  }
  void menuItemChosen(std::size_t index) override { told += "chose" + std::to_string(index) + " "; }
  void menuDidClose() override { told += "closed "; }

  std::string told;
  bool busy = false;
  MenuOpening opening{*this};
};

class MenuOpeningTest : public harness::EventLoopTest<> {
 protected:
  void waitForTold(const std::string& text) {
    EXPECT_TRUE(soon([&] { return client_.told == text; })) << client_.told;
  }

  Client client_;
};

TEST_F(MenuOpeningTest, EachPanelsWayOfTellingIsOneRequestOneChoiceAndOneClosing) {
  struct Row {
    const char* panel;
    std::function<void(MenuOpening&)> tell;
    const char* expected;
  };
  const Row rows[] = {
      {"group call, nothing on closing",
       [](MenuOpening& menu) {
         menu.begin(Sign::AboutToShowGroup);
         menu.begin(Sign::AboutToShowGroup);
         menu.choose(2);
       },
       "right closed right chose2 closed "},
      {"two signs, closed before the choice",
       [](MenuOpening& menu) {
         menu.begin(Sign::Opened);
         menu.begin(Sign::AboutToShow);
         menu.endUnlessChosen();
         menu.choose(1);
       },
       "right chose1 closed "},
      {"closed after the choice",
       [](MenuOpening& menu) {
         menu.begin(Sign::AboutToShow);
         menu.begin(Sign::Opened);
         menu.choose(0);
         menu.endUnlessChosen();
         menu.end();
       },
       "right chose0 closed "},
      {"closed, and opened again by another sign at once",
       [](MenuOpening& menu) {
         menu.begin(Sign::AboutToShow);
         menu.endUnlessChosen();
         menu.begin(Sign::Opened);
         menu.end();
       },
       "right closed right closed "},
      {"signs of a menu that never opened",
       [](MenuOpening& menu) {
         menu.choose(0);
         menu.endUnlessChosen();
         menu.end();
       },
       ""},
  };
  for (const Row& row : rows) {
    Client client;
    row.tell(client.opening);
    EXPECT_EQ(client.told, row.expected) << row.panel;
  }
}

TEST_F(MenuOpeningTest, WhatHappensBeforeABusyClientAttachesItsMenuIsToldAfterwards) {
  client_.busy = true;
  client_.opening.begin(Sign::AboutToShow);
  client_.opening.choose(1);
  EXPECT_EQ(client_.told, "right ");
  client_.opening.attach();
  EXPECT_EQ(client_.told, "right ") << "told inside a call of the item";
  waitForTold("right chose1 closed ");
}

TEST_F(MenuOpeningTest, TwoRequestsToABusyClientAreTwoClosings) {
  for (const bool endsEarly : {true, false}) {
    Client client;
    client.busy = true;
    for (int time = 0; time < 2; ++time) client.opening.begin(Sign::AboutToShowGroup);
    if (endsEarly) client.opening.end();
    for (int time = 0; time < 2; ++time) client.opening.attach();
    EXPECT_TRUE(soon([&] { return client.told.starts_with("right right closed "); }));
    client.opening.end();
    EXPECT_TRUE(soon([&] { return client.told == "right right closed closed "; })) << client.told;
  }
}

TEST_F(MenuOpeningTest, RequestsThatWereNeverAnsweredDoNotSpoilTheNext) {
  client_.busy = true;
  client_.opening.begin(Sign::Opened);
  client_.opening.end();
  client_.busy = false;
  client_.opening.begin(Sign::Opened);
  client_.opening.choose(2);
  EXPECT_EQ(client_.told, "right right chose2 closed ");
  client_.opening.begin(Sign::Opened);
  client_.opening.endUnlessChosen();
  waitForTold("right right chose2 closed right closed ");  // which comes by itself
}

}  // namespace
