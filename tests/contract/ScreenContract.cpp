#include <algorithm>

#include "contract/ContractDesk.h"
#include "platform/Runtime.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSWindow.h"

namespace contract {
namespace {

using Order = std::vector<std::string>;
using platform::NSEvent;
using platform::NSEventType;
using platform::NSRect;
using platform::NSSize;
using platform::NSView;
using platform::NSWindow;
using platform::port::ScreenInfo;

/// Notes what a peer reports, and that it never does so while it is called.
class Reports final : public platform::port::WindowClient, public platform::port::StatusItemClient {
 public:
  void windowDidBecomeKey() override { add("key"); }
  void windowDidResignKey() override { add("not key"); }
  void windowShouldClose() override { add("should close"); }
  void userActedElsewhere() override { add("elsewhere"); }
  void mouseDown(NSView&, const NSEvent& event) override { addEvent(event.type); }
  void mouseUp(NSView&, const NSEvent& event) override { addEvent(event.type); }
  void keyDown(const NSEvent& event) override { addEvent(event.type); }
  void statusItemClicked(NSEventType type) override { addEvent(type); }
  void menuItemChosen(std::size_t) override { add("chosen"); }
  void menuDidClose() override { add("closed"); }

  /// Calls the peer.
  template <typename Call>
  void during(const Call& call) {
    isCalled_ = true;
    call();
    isCalled_ = false;
  }
  [[nodiscard]] bool contains(const std::string& report) const {
    return std::ranges::find(all, report) != all.end();
  }

  Order all;

 private:
  void addEvent(NSEventType type) { add("event " + std::to_string(static_cast<int>(type))); }
  void add(std::string report) {
    EXPECT_FALSE(isCalled_) << report << " from inside a call";
    all.push_back(std::move(report));
  }

  bool isCalled_ = false;
};

/// A model window for a peer, with the Runtime that it needs.
struct Model {
  explicit Model(ContractDesk& desk) : runtime(desk.desktop()) {
    view->setFrame({0, 0, 200, 100});
    view->setWantsLayer(true);
    window->setContentView(view);
  }
  platform::Runtime runtime;
  std::shared_ptr<NSWindow> window = std::make_shared<NSWindow>(platform::NSWindowStyle::Titled);
  std::shared_ptr<NSView> view = std::make_shared<NSView>();
};

TEST_P(DesktopContract, AWindowIsOnTheScreenFromShowToHide) {
  Model model(desk());
  Reports reports;
  auto peer = desk().desktop().windows.createWindow(*model.window, reports);
  ASSERT_TRUE(peer);
  EXPECT_EQ(desk().visibleWindows(), 0U);
  for (int round = 0; round < 2; ++round) {
    reports.during([&] { peer->show(platform::port::PlacedByDesktop{}); });
    EXPECT_TRUE(desk().runUntil([this] { return desk().visibleWindows() == 1; }));
    reports.during([&] { peer->show(platform::port::PlacedByDesktop{}); });
    reports.during([&] { peer->makeKey(); });
    reports.during([&] { peer->update({{model.view, platform::ViewChange::Layer}}, false); });
    reports.during([&] { peer->hide(); });
    EXPECT_TRUE(desk().runUntil([this] { return desk().visibleWindows() == 0; }));
  }
  reports.during([&] { peer->show(platform::port::PlacedByDesktop{}); });
  EXPECT_TRUE(desk().runUntil([this] { return desk().visibleWindows() == 1; }));
  reports.during([&] { peer.reset(); });
  EXPECT_TRUE(desk().runUntil([this] { return desk().visibleWindows() == 0; }));
}

TEST_P(DesktopContract, AClickOnAViewIsAPressAndARelease) {
  struct Clicked final : NSView {
    void mouseDown(const NSEvent&) override { events.emplace_back("down"); }
    void mouseUp(const NSEvent&) override { events.emplace_back("up"); }
    [[nodiscard]] bool acceptsFirstResponder() const override { return true; }
    Order events;
  };
  const Model model(desk());
  const auto view = std::make_shared<Clicked>();
  view->setFrame({0, 0, 200, 100});
  view->setWantsLayer(true);
  model.window->setContentView(view);
  model.window->show(platform::port::PlacedByDesktop{});
  ASSERT_TRUE(desk().runUntil([this] { return desk().visibleWindows() == 1; }));
  desk().click(*view);
  EXPECT_TRUE(desk().runUntil([&] { return view->events.size() == 2; }));
  EXPECT_EQ(view->events, (Order{"down", "up"}));
}

/// An icon that shows on any panel.
constexpr const char* kDot =
    "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 16 16'>"
    "<rect x='2' y='2' width='12' height='12' fill='#d02020'/></svg>";

TEST_P(DesktopContract, AnItemReportsClicksOfWhichTheOneForItsMenuIsAnActOutsideItsWindow) {
  const platform::Runtime runtime(desk().desktop());
  Reports reports;
  const platform::NSImage image("dot", kDot);
  auto item = desk().desktop().statusBar.createStatusItem(reports);
  reports.during([&] { item->setImage(&image); });
  ASSERT_TRUE(desk().runUntil([this] { return desk().isItemThere(); }));
  const auto view = std::make_shared<NSView>();
  view->setFrame({0, 0, 200, 100});
  const auto window = std::make_shared<NSWindow>(platform::NSWindowStyle::Popover);
  window->setContentView(view);
  auto peer = desk().desktop().windows.createWindow(*window, reports);
  reports.during([&] { peer->show(platform::port::PlacedAtStatusItem{item.get()}); });
  ASSERT_TRUE(desk().runUntil([this] { return desk().visibleWindows() == 1; }));
  desk().clickItem(NSEventType::LeftMouseUp);
  EXPECT_TRUE(desk().runUntil([&] { return reports.contains("event 2"); }));
  EXPECT_FALSE(reports.contains("elsewhere"));
  desk().clickItem(NSEventType::RightMouseUp);
  EXPECT_TRUE(desk().runUntil([&] { return reports.contains("event 4"); }));
  std::erase(reports.all, "key");
  std::erase(reports.all, "not key");
  EXPECT_EQ(reports.all, (Order{"event 2", "elsewhere", "event 4"}));
  peer.reset();
  item.reset();
  EXPECT_TRUE(desk().runUntil([this] { return !desk().isItemThere(); }));
}

TEST_P(DesktopContract, AnAlertIsAnsweredOnceAndLater) {
  platform::NSAlert alert;
  alert.setMessageText("Is this seen?");
  alert.addButtonWithTitle("Yes");
  alert.addButtonWithTitle("No");
  std::vector<std::size_t> answers;
  const auto answered = [&answers](std::size_t button) { answers.push_back(button); };
  auto peer = desk().desktop().windows.showAlert(alert, answered);
  EXPECT_TRUE(answers.empty());
  EXPECT_TRUE(desk().runUntil([this] { return desk().visibleWindows() == 1; }));
  desk().answerAlert(1);
  EXPECT_TRUE(desk().runUntil([&] { return !answers.empty(); }));
  peer.reset();
  EXPECT_TRUE(desk().runUntil([this] { return desk().visibleWindows() == 0; }));
  // One that is destroyed goes unanswered.
  peer = desk().desktop().windows.showAlert(alert, answered);
  EXPECT_TRUE(desk().runUntil([this] { return desk().visibleWindows() == 1; }));
  peer.reset();
  EXPECT_TRUE(desk().runUntil([this] { return desk().visibleWindows() == 0; }));
  EXPECT_EQ(answers, std::vector<std::size_t>{1});
}

/// Counts what it is told; `states` has the number of screens of each time.
class Told final : public platform::port::ScreensClient, public platform::port::SpacesClient {
 public:
  explicit Told(const platform::Desktop& desktop) : desktop_(desktop) {}
  void screenParametersDidChange() override { states.push_back(desktop_.screens.screens().size()); }
  void activeSpaceDidChange() override { ++spaceChanges; }

  std::vector<std::size_t> states;
  int spaceChanges = 0;

 private:
  const platform::Desktop& desktop_;
};

const std::vector<NSSize> kTwo{{1280, 720}, {1024, 600}};
const std::vector<NSSize> kOne{{1280, 720}};

TEST_P(DesktopContract, AScreenHasAPlaceAndANameAndIsToldOnceWhenItGoesOrComes) {
  auto& screens = desk().desktop().screens;
  desk().setMonitors(kTwo);
  ASSERT_TRUE(desk().runUntil([&] { return screens.screens().size() == 2; }));
  const std::vector<ScreenInfo> both = screens.screens();
  const double scale = both[0].backingScaleFactor;
  EXPECT_GE(scale, 1);
  EXPECT_EQ(both[0].frame, (NSRect{0, 0, 1280 / scale, 720 / scale}));
  // y is up: with their upper edges in line, the lower one begins higher.
  EXPECT_EQ(both[1].frame, (NSRect{1280 / scale, 120 / scale, 1024 / scale, 600 / scale}));
  EXPECT_NE(both[0].id, both[1].id);
  Told told(desk().desktop());
  screens.setClient(&told);
  desk().setMonitors(kOne);
  EXPECT_TRUE(desk().runUntil([&] { return !told.states.empty(); }));
  EXPECT_EQ(screens.screens(), std::vector{both[0]});
  desk().setMonitors(kTwo);
  EXPECT_TRUE(desk().runUntil([&] { return told.states.size() == 2; }));
  EXPECT_EQ(screens.screens(), both);
  screens.setClient(nullptr);
  desk().setMonitors(kOne);
  EXPECT_TRUE(desk().runUntil([&] { return screens.screens().size() == 1; }));
  EXPECT_EQ(told.states, (std::vector<std::size_t>{1, 2}));
}

TEST_P(DesktopContract, AnotherSpaceIsToldOnce) {
  ASSERT_NE(desk().desktop().spaces, nullptr);
  Told told(desk().desktop());
  auto& spaces = *desk().desktop().spaces;
  spaces.setClient(&told);
  for (int change = 1; change <= 4; ++change) {
    desk().goToSpace(static_cast<std::uint32_t>(change % 2));
    EXPECT_TRUE(desk().runUntil([&] { return told.spaceChanges >= change; }));
    EXPECT_EQ(told.spaceChanges, change);
  }
  spaces.setClient(nullptr);
}

}  // namespace
}  // namespace contract
