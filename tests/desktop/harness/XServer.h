#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "desktop/harness/Process.h"
#include "desktop/harness/XConnection.h"

namespace harness {

/// An X server without a screen, on a display number that is nobody else's, whose monitors can be
/// plugged and unplugged.
class XServer {
 public:
  /// `folder` takes the server's socket. Returns when clients can connect and the monitors are
  /// as wanted. With another depth than 24 there is one monitor, the first, and it stays.
  XServer(const std::filesystem::path& folder, const Environment& environment,
          const std::vector<Rect>& monitors, int depth);

  /// As DISPLAY has it.
  [[nodiscard]] const std::string& display() const { return display_; }
  [[nodiscard]] Process& process() { return *process_; }

  /// Returns once RandR reports exactly these monitors.
  void setMonitors(const std::vector<Rect>& monitors);
  /// What RandR reports now.
  [[nodiscard]] std::vector<Rect> monitors() const;

 private:
  [[nodiscard]] bool start(const Environment& environment, const std::vector<Rect>& monitors,
                           int depth);

  std::string rfbSocket_;
  std::unique_ptr<Process> process_;
  std::string display_;
};

}  // namespace harness
