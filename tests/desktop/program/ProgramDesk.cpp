#include "desktop/program/ProgramDesk.h"

using harness::Rect;
using namespace std::chrono_literals;

bool ProgramDesk::start() {
  program.reset();
  program = desk.startCalmdeck(harness::AccessibilityClient::accessibleEnvironment());
  return opens();
}

// --- Panel ---

bool ProgramDesk::opens() {
  const auto active = [&] {
    const auto popover = desk.openPopover();
    return popover && desk.windows().active() == popover->id;
  };
  if (!desk.until(active)) return false;
  // It may move once more, to where the icon turned out to be.
  (void)desk.screen().settled(popoverArea(), 100ms);
  return true;
}

bool ProgramDesk::closes() {
  return desk.until([&] { return !desk.openPopover(); });
}

bool ProgramDesk::close() {
  if (desk.openPopover()) desk.input().key("Escape");
  return closes();
}

Rect ProgramDesk::popoverArea() const {
  const auto popover = desk.openPopover();
  return popover ? popover->area : Rect{};
}

bool ProgramDesk::clickIcon(harness::Button button) {
  const auto icon = desk.trayIcon();
  if (icon) desk.input().click(icon->centreX(), icon->centreY(), button);
  return icon.has_value();
}

bool ProgramDesk::openMenu() {
  return desk.opensAWindow([this] { (void)clickIcon(harness::Button::Right); });
}

bool ProgramDesk::quits() {
  // From the menu's beginning Up goes round to its last item.
  for (const char* key : {"Up", "Return"}) desk.input().key(key);
  return program->waitForExit() == harness::ProcessEnd{0, 0};
}

// --- What it is for ---

bool ProgramDesk::click(const std::string& name) {
  const auto found = reader.await(name);
  if (found) desk.input().click(found->area.centreX(), found->area.centreY());
  return found.has_value();
}

bool ProgramDesk::covered(bool covered) {
  return desk.until([&] { return covered ? desk.everyMonitorIsCovered() : desk.covers().empty(); });
}

bool ProgramDesk::sinkMuted(bool muted) {
  return desk.until([&] { return desk.sound().sinkMuted(kSink) == muted; });
}
