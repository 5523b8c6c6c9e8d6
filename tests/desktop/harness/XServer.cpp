#include "desktop/harness/XServer.h"

#include <xcb/randr.h>

#include <random>
#include <stdexcept>

#include "desktop/harness/XConnection.h"

namespace harness {

namespace {

constexpr int kUsualDepth = 24;

Command serverCommand(const std::string& display, const std::string& rfbSocket,
                      const Environment& environment, const std::vector<Rect>& monitors,
                      int depth) {
  const Rect first = monitors.empty() ? Rect{0, 0, 1280, 720} : monitors.front();
  const std::string geometry = std::to_string(first.width) + "x" + std::to_string(first.height);
  if (depth != kUsualDepth) {
    return {{"Xvfb", display, "-displayfd", "1", "-screen", "0",
             geometry + "x" + std::to_string(depth), "-nolisten", "tcp", "-noreset"},
            environment};
  }
  return {{"Xvnc", display, "-displayfd", "1", "-geometry", geometry, "-depth", "24",
           "-SecurityTypes", "None", "-rfbport", "-1", "-rfbunixpath", rfbSocket, "-nolisten",
           "tcp", "-noreset", "-AcceptSetDesktopSize=1"},
          environment};
}

// Not the lowest free one: a number that was just given back may still be in the mind of some
// client of the desktop before, and root folders of one machine share the abstract sockets.
std::string randomDisplay() {
  static std::mt19937 generator{std::random_device{}()};
  std::uniform_int_distribution<int> number(1000, 29999);
  return ":" + std::to_string(number(generator));
}

std::vector<Rect> monitorsOf(const XConnection& x) {
  const auto cookie = xcb_randr_get_monitors(x.get(), x.root(), 1);
  const XReply<xcb_randr_get_monitors_reply_t> reply(
      xcb_randr_get_monitors_reply(x.get(), cookie, nullptr));
  std::vector<Rect> monitors;
  if (!reply) return monitors;
  for (auto each = xcb_randr_get_monitors_monitors_iterator(reply.get()); each.rem > 0;
       xcb_randr_monitor_info_next(&each)) {
    monitors.push_back({each.data->x, each.data->y, each.data->width, each.data->height});
  }
  return monitors;
}

}  // namespace

XServer::XServer(const std::filesystem::path& folder, const Environment& environment,
                 const std::vector<Rect>& monitors, int depth)
    : rfbSocket_(folder / "rfb") {
  constexpr int kAttempts = 5;
  for (int attempt = 1; !start(environment, monitors, depth); ++attempt) {
    if (attempt == kAttempts) throw std::runtime_error("no X server: " + process_->errorOutput());
  }
  if (!monitors.empty() && depth == kUsualDepth) setMonitors(monitors);
}

bool XServer::start(const Environment& environment, const std::vector<Rect>& monitors, int depth) {
  display_ = randomDisplay();
  process_ =
      std::make_unique<Process>(serverCommand(display_, rfbSocket_, environment, monitors, depth));
  return process_->waitForLine("^[0-9]+$").has_value();
}

void XServer::setMonitors(const std::vector<Rect>& wanted) {
  const XConnection x(display_);
  // Debian's own Python, as everything that the harness starts.
  std::vector<std::string> argv{"/usr/bin/python3", HARNESS_FOLDER "/vnc_monitors.py", rfbSocket_};
  for (const Rect& monitor : wanted) {
    argv.push_back(std::to_string(monitor.width) + "x" + std::to_string(monitor.height) + "+" +
                   std::to_string(monitor.x) + "+" + std::to_string(monitor.y));
  }
  if (const RunResult asked = runToEnd({argv}); !asked.succeeded())
    throw std::runtime_error("the monitors were refused: " + asked.errorOutput);
  if (!until([&] { return monitorsOf(x) == wanted; }))
    throw std::runtime_error("the X server did not take the monitors");
}

std::vector<Rect> XServer::monitors() const {
  const XConnection x(display_);
  return monitorsOf(x);
}

}  // namespace harness
