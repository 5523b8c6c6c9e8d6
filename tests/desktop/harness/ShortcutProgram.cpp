#include "desktop/harness/ShortcutProgram.h"

#include <stdexcept>

namespace harness {

namespace {

constexpr const char* kPressed = "Pressed at ";

}  // namespace

ShortcutProgram::ShortcutProgram(XDesk& desk, const std::vector<std::string>& features,
                                 const std::string& further)
    : desk_(desk) {
  desk.writeSettings(features, kControlAltP + (further.empty() ? "" : ", " + further));
  process_ = desk.startCalmdeck();
  std::optional<WindowInfo> panel;
  if (desk.until([&] { return (panel = desk.openPopover()).has_value(); })) {
    desk.x().askToClose(panel->id);
    if (desk.until([&] { return !desk.openPopover(); })) return;
  }
  throw std::runtime_error("no panel to close: " + process_->errorOutput());
}

void ShortcutProgram::toggle() {
  press();
  if (!process_->waitForLine(std::string("^") + kPressed) ||
      !desk_.until([this] { return desk_.home().isAtRest(); })) {
    throw std::runtime_error("the shortcut leads to no end: " + process_->errorOutput());
  }
}

void ShortcutProgram::quit() {
  if (process_->terminate(kPatience) != ProcessEnd{0, 0})
    throw std::runtime_error("the program did not end by itself: " + process_->errorOutput());
}

std::string ShortcutProgram::printed() const {
  std::string text;
  for (const std::string& line : process_->lines(""))
    if (!line.starts_with(kPressed)) text += line + '\n';
  return text;
}

}  // namespace harness
