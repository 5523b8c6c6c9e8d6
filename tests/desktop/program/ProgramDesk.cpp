#include "desktop/program/ProgramDesk.h"

using harness::AccessibleElement;
using harness::Rect;
using namespace std::chrono_literals;

testing::AssertionResult ProgramDesk::verdict(bool holds, const std::string& claim) const {
  if (holds) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "not so: " << claim << "; the program wrote\n"
                                     << program_->output() << program_->errorOutput();
}

// --- Program ---

void ProgramDesk::launch() {
  program_.reset();
  program_ = desk_.startCalmdeck(harness::AccessibilityClient::accessibleEnvironment());
}

testing::AssertionResult ProgramDesk::start() {
  launch();
  return opens();
}

testing::AssertionResult ProgramDesk::says(const std::string& text) {
  return verdict(program_->waitForLine("^" + text + "$").has_value(), "it says " + text);
}

// --- Panel ---

testing::AssertionResult ProgramDesk::opens() {
  const auto active = [&] {
    const auto popover = desk_.openPopover();
    return popover && desk_.windows().active() == popover->id;
  };
  auto result = verdict(desk_.until(active), "the panel is open and has the keyboard");
  // It may move once more, to where the icon turned out to be.
  if (result) (void)desk_.screen().settled(popoverArea(), 100ms);
  return result;
}

testing::AssertionResult ProgramDesk::closes() {
  return verdict(desk_.until([&] { return !desk_.openPopover(); }), "the panel closes");
}

Rect ProgramDesk::popoverArea() const {
  const auto popover = desk_.openPopover();
  return popover ? popover->area : Rect{};
}

testing::AssertionResult ProgramDesk::clickIcon(harness::Button button) {
  const auto icon = desk_.trayIcon();
  if (icon) desk_.input().click(icon->centreX(), icon->centreY(), button);
  return verdict(icon.has_value(), "there is an icon");
}

testing::AssertionResult ProgramDesk::openMenu() {
  return verdict(desk_.opensAWindow([this] { (void)clickIcon(harness::Button::Right); }),
                 "the menu opens");
}

testing::AssertionResult ProgramDesk::quits() {
  // From the menu's beginning Up goes round to its last item.
  for (const char* key : {"Up", "Return"}) desk_.input().key(key);
  return verdict(program_->waitForExit() == harness::ProcessEnd{0, 0}, "it ends by itself");
}

harness::Image ProgramDesk::iconImage() const {
  const auto icon = desk_.trayIcon();
  return icon ? desk_.screen().settled(*icon, 200ms) : harness::Image{};
}

// --- Switches ---

testing::AssertionResult ProgramDesk::clickSwitch(const std::string& name) {
  const auto found = reader_.await(name);
  if (found) desk_.input().click(found->area.centreX(), found->area.centreY());
  return verdict(found.has_value(), "there is a switch " + name);
}

testing::AssertionResult ProgramDesk::muteByTheMode() {
  for (const char* name : {kSpeaker, kMaster})
    if (auto clicked = clickSwitch(name); !clicked) return clicked;
  return sinkMuted(true);
}

testing::AssertionResult ProgramDesk::switchedOn(const std::set<std::string>& names) const {
  std::set<std::string> seen;
  const auto asWanted = [&] {
    seen.clear();
    for (const AccessibleElement& element : reader_.elements())
      if (element.is("focusable") && element.is("checked")) seen.insert(element.name);
    return seen == names;
  };
  return verdict(desk_.until(asWanted), "on are " + testing::PrintToString(names) + " and not " +
                                            testing::PrintToString(seen));
}

testing::AssertionResult ProgramDesk::sinkMuted(bool muted) {
  return verdict(desk_.until([&] { return desk_.sound().sinkMuted(kSink) == muted; }),
                 muted ? "the sink is muted" : "the sink is not muted");
}
