// Where the panels of a desktop are, from what it tells on the root window.

#include <gmock/gmock.h>

#include "desktop/harness/XDesk.h"
#include "desktop/linux/x11/XPanels.h"
#include "desktop/x11/TestProgram.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class PanelsTest : public testing::Test {
 protected:
  using Numbers = std::vector<std::uint32_t>;

  void set(xcb_window_t window, const char* property, const Numbers& numbers) {
    xcb_connection_t* x = program.server().get();
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, window, desk.x().atom(property),
                        XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(numbers.size()),
                        numbers.data());
    xcb_flush(x);
  }
  void setOnRoot(const char* property, const Numbers& numbers) {
    set(desk.x().root(), property, numbers);
  }
  [[nodiscard]] std::vector<QRect> panels() {
    std::vector<QRect> areas;
    for (const auto& panel : linux_desktop::panelsOn(program.server()))
      areas.push_back(panel.geometry);
    return areas;
  }

  // Two monitors side by side, the second one less high.
  harness::XDesk desk;
  TestProgram program{desk.environment()};
};

TEST_F(PanelsTest, WhatAShellDrawsIsWhatItKeepsFreeOnEachMonitor) {
  setOnRoot("_NET_CURRENT_DESKTOP", {1});
  setOnRoot("_NET_WORKAREA", {0, 0, 2304, 680, 0, 0, 2304, 680});
  setOnRoot("_GTK_WORKAREAS_D0", {0, 0, 1280, 720, 1280, 0, 1024, 600});
  setOnRoot("_GTK_WORKAREAS_D1", {0, 0, 1280, 680, 1310, 0, 994, 600});
  EXPECT_THAT(panels(), ElementsAre(QRect(0, 680, 1280, 40), QRect(1280, 0, 30, 600)));
}

TEST_F(PanelsTest, ABarThatSaysNothingIsAtTheEdgeThatIsKeptFreeUnlessAPanelExplainsIt) {
  setOnRoot("_NET_WORKAREA", {0, 0, 2304, 700});
  EXPECT_THAT(panels(), ElementsAre(QRect(0, 700, 1280, 20)));

  // One on the lower edge of the second monitor makes less of the whole, too.
  const xcb_window_t bar = desk.x().open({.type = "DOCK", .area = {1280, 570, 1024, 30}});
  ASSERT_TRUE(desk.until([&] { return desk.windows().info(bar)->viewable; }));
  set(bar, "_NET_WM_STRUT_PARTIAL", {0, 0, 0, 150, 0, 0, 0, 0, 0, 0, 1280, 2303});
  setOnRoot("_NET_WORKAREA", {0, 0, 2304, 570});
  EXPECT_THAT(panels(), ElementsAre(QRect(1280, 570, 1024, 30)));

  setOnRoot("_NET_WORKAREA", {});
  xcb_unmap_window(program.server().get(), bar);
  EXPECT_THAT(panels(), IsEmpty());
}

}  // namespace
