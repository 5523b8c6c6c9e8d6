#pragma once

#include <memory>
#include <variant>

#include "platform/Desktop.h"

namespace linux_desktop {

/// A Linux desktop: Qt for what is on the screen, libpulse for the sound, D-Bus for the tray, files
/// for the settings. One a process.
class LinuxDesktop {
 public:
  /// How this start of the program goes on: with a desktop, or, where there is nothing for it to
  /// do, by ending with an exit status. That is 0 when the program runs already and has been told
  /// to show itself; 1, after one line on standard error, when it hangs or there is no display.
  [[nodiscard]] static std::variant<std::unique_ptr<LinuxDesktop>, int> open(int& argc,
                                                                             char** argv);
  ~LinuxDesktop();
  LinuxDesktop(const LinuxDesktop&) = delete;
  LinuxDesktop& operator=(const LinuxDesktop&) = delete;

  [[nodiscard]] const platform::Desktop& desktop() const;

 private:
  struct Process;
  struct Services;
  explicit LinuxDesktop(std::unique_ptr<Process> process);

  // Services need the process's application object, so they go first.
  std::unique_ptr<Process> process_;
  std::unique_ptr<Services> services_;
};

}  // namespace linux_desktop
