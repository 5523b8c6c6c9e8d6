#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/harness/Desk.h"
#include "desktop/harness/DesktopPrograms.h"
#include "desktop/harness/Input.h"
#include "desktop/harness/Screen.h"
#include "desktop/harness/WindowList.h"
#include "desktop/harness/XConnection.h"
#include "desktop/harness/XServer.h"

namespace harness {

/// What a private desktop consists of. The defaults: an X server and a bus, nothing else.
struct DeskOptions {
  WindowManager windowManager = WindowManager::None;
  Panel panel = Panel::None;
  PanelPlace panelPlace = {};
  NotificationDaemon notifications = NotificationDaemon::None;
  DesktopIcons icons = DesktopIcons::None;
  std::optional<SoundServerKind> sound = {};
  /// Two of different sizes, side by side.
  std::vector<Rect> monitors = {{0, 0, 1280, 720}, {1280, 0, 1024, 600}};
  /// With another depth the first one only, named "screen".
  int depth = 24;
  bool sessionBus = true;
  /// Added to what every program of this desktop inherits.
  Environment environment = {};
};

/// A private desktop for one test: own X server, session bus, home and runtime folder, and real
/// programs on it. The constructor returns when all that was asked for is ready, each by a fact
/// that can be seen from outside; it throws std::runtime_error, naming the program, when one is
/// not. The destructor leaves no process and no file. The test talks to the program as a stranger
/// does: pixels, windows, input, the bus.
class XDesk : public Desk {
 public:
  explicit XDesk(const DeskOptions& options = {});
  ~XDesk() override;

  [[nodiscard]] XServer& server() const { return *server_; }
  [[nodiscard]] const XConnection& x() const { return *x_; }
  [[nodiscard]] const WindowList& windows() const { return *windows_; }
  [[nodiscard]] const XInput& input() const { return static_cast<const XInput&>(*input_); }
  /// These abort the test when the desktop was made without them.
  [[nodiscard]] Process& windowManager() { return *windowManager_; }
  [[nodiscard]] Process& panel() { return *panel_; }
  [[nodiscard]] Process& notifications() { return *notifications_; }
  [[nodiscard]] Process& icons() { return *icons_; }

  [[nodiscard]] WindowManager managerKind() const { return managerKind_; }

  /// Each ends the one that ran and returns when the new one is ready.
  void startWindowManager(WindowManager kind);
  void startPanel(Panel kind, const PanelPlace& place = {});
  void startNotifications(NotificationDaemon kind);
  void startIcons(DesktopIcons kind);
  void stopPanel() { panel_.reset(); }
  [[nodiscard]] std::vector<Rect> panelAreas() const final;
  /// Calmdeck's panel while it is on the screen; looked for once.
  [[nodiscard]] std::optional<WindowInfo> openPopover() const;

  /// A foreign program's ordinary window with some text, ready when it is on the screen (and
  /// managed, where there is a window manager). It lasts as long as the desktop.
  WindowInfo openWindow(const std::string& title, const Rect& area);

  /// A window of the type DESKTOP, as programs with icons have it and some clocks; ready when it is
  /// on the screen.
  void openDesktopWindow(const Rect& area, std::uint32_t colour) const;

  /// As on a click on its button in a task bar; waits until it is the active one.
  [[nodiscard]] bool activate(xcb_window_t window) const;

  /// Runs `click` and waits until another window, a panel's menu say, is on the screen and drawn.
  [[nodiscard]] bool opensAWindow(const std::function<void()>& click) const;

  /// The whole screen once it has come to rest.
  [[nodiscard]] Image settled(
      std::chrono::milliseconds calm = std::chrono::milliseconds(400)) const {
    return screen_->settled(x_->screenArea(), calm);
  }
  /// Each monitor of it: what lies between them nobody sees.
  [[nodiscard]] std::vector<Image> settledMonitors() const;
  /// Calmdeck's, that are on the screen now, in no particular order.
  [[nodiscard]] std::vector<WindowInfo> covers() const;
  /// Those of whoever shows icons.
  [[nodiscard]] std::vector<WindowInfo> iconWindows() const;
  /// Exactly one cover a monitor, as large as it; icewm's may be a little less.
  [[nodiscard]] bool everyMonitorIsCovered() const;

  /// The viewable window for which `test` holds, once there is one.
  [[nodiscard]] std::optional<WindowInfo> awaitWindow(const WindowTest& test) const;

 private:
  [[nodiscard]] bool windowManagerTakesWindows() const;
  [[nodiscard]] bool trayHostReady(Panel kind) const;
  void startAgainWhileStuck(std::unique_ptr<Process>& process, const std::vector<std::string>& argv,
                            const std::function<bool()>& ready) const;

  std::unique_ptr<XServer> server_;
  std::unique_ptr<XConnection> x_;
  std::unique_ptr<WindowList> windows_;
  std::unique_ptr<Process> windowManager_;
  WindowManager managerKind_ = WindowManager::None;
  std::unique_ptr<Process> notifications_;
  std::unique_ptr<Process> icons_;
  std::unique_ptr<Process> panel_;
  std::vector<std::unique_ptr<Process>> windowPrograms_;
};

}  // namespace harness
