#include "bench/DeskProgram.h"

#include <cstdlib>
#include <stdexcept>

#include "desktop/harness/AccessibilityClient.h"

namespace bench {

using namespace std::chrono_literals;
using harness::AccessibilityClient;

void liveOn(const harness::Desk& desk) {
  for (const auto& [name, value] : desk.environment()) ::setenv(name.c_str(), value.c_str(), 1);
}

std::unique_ptr<harness::XDesk> openDesk(harness::Panel panel) {
  harness::DeskOptions options;
  options.windowManager = harness::WindowManager::Xfwm4;
  options.panel = panel;
  options.sound = harness::SoundServerKind::PulseAudio;
  options.monitors = {{0, 0, 1280, 720}};
  auto desk = std::make_unique<harness::XDesk>(options);
  liveOn(*desk);
  return desk;
}

// --- DeskProgram ---

DeskProgram::DeskProgram(harness::XDesk& desk, const harness::Environment& extra)
    : desk_(desk), process_(desk.startCalmdeck(extra)) {}

void DeskProgram::require(bool fact, const std::string& claim) {
  if (!fact) throw std::runtime_error("not so: " + claim + "\n" + process_->errorOutput());
}

void DeskProgram::awaitPanel() {
  const auto active = [this] {
    const auto panel = desk_.openPopover();
    return panel && desk_.windows().active() == panel->id;
  };
  require(desk_.until(active), "the panel is open and has the keyboard");
}

void DeskProgram::openPanel() {
  const auto icon = desk_.trayIcon();
  require(icon.has_value(), "there is a tray icon");
  desk_.input().click(icon->centreX(), icon->centreY());
  awaitPanel();
}

void DeskProgram::ensurePanel() {
  if (!desk_.openPopover()) openPanel();
}

void DeskProgram::closePanel() {
  desk_.input().moveTo(5, 5);
  desk_.input().key("Escape");
  require(desk_.until([this] { return !desk_.openPopover(); }), "the panel has closed");
}

harness::Rect DeskProgram::panelArea() const {
  const auto panel = desk_.openPopover();
  return panel ? panel->area : harness::Rect{};
}

Clock::time_point DeskProgram::click(int x, int y) {
  const harness::Rect panel = panelArea();
  require(panel.width > 0, "the panel is open");
  desk_.input().moveTo(panel.x + x, panel.y + y);
  desk_.input().press(harness::Button::Left);
  const Clock::time_point letGo = Clock::now();
  desk_.input().release(harness::Button::Left);
  return letGo;
}

void DeskProgram::end() {
  require(process_->terminate(5s) == harness::ProcessEnd{0, 0}, "the program ends well");
}

// --- ReadyProgram ---

ReadyProgram::ReadyProgram(harness::XDesk& desk) : desk_(desk) {
  chooseSpeaker(desk);
  program_ = std::make_unique<DeskProgram>(desk);
  program_->awaitPanel();
}

void ReadyProgram::restart(const harness::Environment& extra) {
  program_->end();
  program_ = std::make_unique<DeskProgram>(desk_, extra);
  program_->awaitPanel();
}

void ReadyProgram::chooseSpeaker(harness::XDesk& desk) {
  DeskProgram read(desk, AccessibilityClient::accessibleEnvironment());
  read.awaitPanel();
  const AccessibilityClient reader(desk);
  const harness::Rect panel = read.panelArea();
  const auto master = reader.await("Presentation mode");
  const auto speaker = reader.await("Mute speaker");
  if (!master || !speaker) throw std::runtime_error("the panel lacks a switch");
  master_ = {master->area.centreX() - panel.x, master->area.centreY() - panel.y, 0, 0};
  const auto chosen = [&] {
    const auto now = reader.await("Mute speaker", 0ms);
    return now && now->is("checked");
  };
  if (!chosen()) read.click(speaker->area.centreX() - panel.x, speaker->area.centreY() - panel.y);
  if (!desk.until(chosen)) throw std::runtime_error("the speaker is not chosen");
  read.end();
}

}  // namespace bench
