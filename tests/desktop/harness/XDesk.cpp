#include "desktop/harness/XDesk.h"

#include <algorithm>
#include <stdexcept>

#include "desktop/harness/Process.h"

namespace harness {

using namespace std::chrono_literals;

namespace {

constexpr const char* kNotifications = "org.freedesktop.Notifications";
constexpr const char* kCoverClass = "calmdeck-cover";

bool touches(const Rect& area, const Rect& monitor, Edge edge) {
  const bool lies = area.width > area.height;
  switch (edge) {
    case Edge::Top:
      return lies && area.y == monitor.y;
    case Edge::Bottom:
      return lies && area.bottom() == monitor.bottom();
    case Edge::Left:
      return !lies && area.x == monitor.x;
    case Edge::Right:
      return !lies && area.right() == monitor.right();
  }
  return false;
}

/// icewm cuts its own bar off even an icon window.
bool fills(const Rect& area, Rect monitor, WindowManager manager) {
  constexpr int kThickestBar = 48;
  if (manager == WindowManager::Icewm) monitor.height -= kThickestBar;
  return area.contains(monitor);
}

bool announced(const XConnection& x) {
  const auto check = x.number(x.root(), "_NET_SUPPORTING_WM_CHECK");
  return check && x.number(*check, "_NET_SUPPORTING_WM_CHECK") == check &&
         !x.numbers(x.root(), "_NET_SUPPORTED").empty();
}

}  // namespace

XDesk::XDesk(const DeskOptions& options) : Desk(options.environment) {
  server_ =
      std::make_unique<XServer>(home().runtime(), environment(), options.monitors, options.depth);
  setEnvironment("DISPLAY", server_->display());
  // MATE's daemon ends while it has nothing to show, and only this tells that it will come again.
  if (options.notifications == NotificationDaemon::Mate)
    setEnvironment("XDG_CURRENT_DESKTOP", "MATE");
  x_ = std::make_unique<XConnection>(server_->display());
  screen_ = std::make_unique<XScreen>(home(), *x_);
  windows_ = std::make_unique<WindowList>(*x_);
  input_ = std::make_unique<XInput>(*x_);
  if (options.sessionBus) {
    startBus();
  } else {
    setEnvironment("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  }
  if (options.sound) startSound(*options.sound);
  startWindowManager(options.windowManager);
  startIcons(options.icons);
  startNotifications(options.notifications);
  startPanel(options.panel, options.panelPlace);
}

XDesk::~XDesk() = default;

void XDesk::startWindowManager(WindowManager kind) {
  windowManager_.reset();
  managerKind_ = kind;
  if (kind == WindowManager::None) return;
  const DesktopProgram& row = program(kind);
  if (!row.configFile.empty()) home().writeConfig(row.configFile, row.configText);
  windowManager_ = start(row.argv);
  require(windowManagerTakesWindows(), row.name, *windowManager_);
}

// Its properties on the root are no proof: openbox sets them before it takes requests, and loses
// one that comes in between.
bool XDesk::windowManagerTakesWindows() const {
  const std::string title = "taken?";
  const auto isCalled = [&](const WindowInfo& window) { return window.name == title; };
  const auto isManaged = [&] {
    const auto window = windows_->find(isCalled);
    return window && window->managed;
  };
  const auto takesOne = [&] {
    const auto program = start({"xmessage", "-title", title, title});
    return until(isManaged, 3s);
  };
  return until([&] { return announced(*x_); }) && until(takesOne) &&
         until([&] { return !windows_->find(isCalled); });
}

void XDesk::startNotifications(NotificationDaemon kind) {
  notifications_.reset();
  if (kind == NotificationDaemon::None) return;
  const DesktopProgram& row = program(kind);
  if (kind == NotificationDaemon::Mate) bus().offer(kNotifications, row.argv.front());
  notifications_ = start(row.argv);
  require(until([&] { return bus().hasOwner(kNotifications); }), row.name, *notifications_);
}

// One start of pcmanfm-qt 2.1 in three gets stuck before its windows come, in the volume monitor of
// GLib 2.84. All that it leans on sleeps then, too.
void XDesk::startAgainWhileStuck(std::unique_ptr<Process>& process,
                                 const std::vector<std::string>& argv,
                                 const std::function<bool()>& ready) const {
  constexpr int kAttempts = 10;
  constexpr auto kLongSleep = 2s;
  using Clock = std::chrono::steady_clock;
  for (int attempt = 1; attempt < kAttempts; ++attempt) {
    Clock::time_point awake = Clock::now();
    const auto isStuck = [&] {
      if (!home().isAtRest()) awake = Clock::now();
      return Clock::now() - awake > kLongSleep;
    };
    bool isReady = false;
    if (!until([&] { return (isReady = ready()) || isStuck(); }) || isReady) return;
    process.reset();
    process = start(argv);
  }
}

void XDesk::startIcons(DesktopIcons kind) {
  icons_.reset();
  if (kind == DesktopIcons::None) return;
  const DesktopProgram& row = program(kind);
  const auto allCovered = [&] {
    const std::vector<WindowInfo> windows = iconWindows();
    return std::ranges::all_of(server_->monitors(), [&](const Rect& monitor) {
      return std::ranges::any_of(windows, [&](const WindowInfo& window) {
        return fills(window.area, monitor, managerKind_);
      });
    });
  };
  icons_ = start(row.argv);
  if (kind == DesktopIcons::PcmanfmQt) startAgainWhileStuck(icons_, row.argv, allCovered);
  require(until(allCovered), row.name, *icons_);
  (void)settled(400ms);
}

bool XDesk::trayHostReady(Panel kind) const {
  // It knows the old protocol only.
  if (kind == Panel::Tint2) return x_->hasOwner("_NET_SYSTEM_TRAY_S0");
  return busIfAny() == nullptr || busIfAny()->hasTrayHost();
}

void XDesk::startPanel(Panel kind, const PanelPlace& place) {
  panel_.reset();
  if (kind == Panel::None) return;
  const DesktopProgram& row = program(kind);
  configurePanel(kind, place, home(), environment());
  panel_ = start(row.argv);
  const Rect onMonitor = server_->monitors().at(static_cast<std::size_t>(place.monitor));
  const auto standing = [&] {
    return std::ranges::any_of(panelAreas(), [&](const Rect& area) {
      return onMonitor.intersects(area) && touches(area, onMonitor, place.edge);
    });
  };
  require(until(standing) && until([&] { return trayHostReady(kind); }), row.name, *panel_);
  for (const Rect& area : panelAreas()) (void)screen_->settled(area, 200ms);
}

std::vector<Rect> XDesk::panelAreas() const {
  std::vector<Rect> areas;
  for (const WindowInfo& window : windows_->all()) {
    if (window.viewable && window.type == "DOCK") areas.push_back(window.area);
  }
  return areas;
}

std::optional<WindowInfo> XDesk::openPopover() const {
  constexpr int kLargestIcon = 64;  // an icon in an old tray is a window of the program, too
  return windows_->findViewable([](const WindowInfo& window) {
    return ofClass("calmdeck")(window) && window.area.height > kLargestIcon;
  });
}

WindowInfo XDesk::openWindow(const std::string& title, const Rect& area) {
  const std::string geometry = std::to_string(area.width) + "x" + std::to_string(area.height) +
                               "+" + std::to_string(area.x) + "+" + std::to_string(area.y);
  windowPrograms_.push_back(
      start({"xmessage", "-title", title, "-geometry", geometry, "-buttons", "", title}));
  const bool managedToo = windowManager_ != nullptr;
  const auto test = [&](const WindowInfo& window) {
    return window.name == title && (window.managed || !managedToo);
  };
  const std::optional<WindowInfo> window = awaitWindow(test);
  require(window.has_value(), "xmessage", *windowPrograms_.back());
  return *window;
}

void XDesk::openDesktopWindow(const Rect& area, std::uint32_t colour) const {
  (void)x_->open({.type = "DESKTOP", .area = area, .colour = colour});
  if (!until([&] { return screen_->pixel(area.centreX(), area.centreY()) == colour; }))
    throw std::runtime_error("no window of the type DESKTOP came");
}

bool XDesk::opensAWindow(const std::function<void()>& click) const {
  const std::set<xcb_window_t> before = windows_->viewable();
  click();
  if (!until([&] { return !std::ranges::includes(before, windows_->viewable()); })) return false;
  (void)settled(200ms);
  return true;
}

std::vector<Image> XDesk::settledMonitors() const {
  const Image whole = settled();
  std::vector<Image> images;
  for (const Rect& monitor : server_->monitors()) images.push_back(whole.part(monitor));
  return images;
}

std::vector<WindowInfo> XDesk::covers() const {
  std::vector<WindowInfo> found = windows_->all();
  // That of a monitor which is gone stays where nobody sees it.
  std::erase_if(found, [all = x_->screenArea()](const WindowInfo& window) {
    return !window.viewable || window.className != kCoverClass || !window.area.intersects(all);
  });
  return found;
}

std::vector<WindowInfo> XDesk::iconWindows() const {
  std::vector<WindowInfo> found = windows_->all();
  std::erase_if(found, [](const WindowInfo& window) {
    return !window.viewable || window.type != "DESKTOP" || window.className == kCoverClass;
  });
  return found;
}

bool XDesk::activate(xcb_window_t window) const {
  windows_->activate(window);
  return until([&] { return windows_->active() == window; });
}

bool XDesk::everyMonitorIsCovered() const {
  const std::vector<WindowInfo> windows = covers();
  const std::vector<Rect> monitors = server_->monitors();
  return windows.size() == monitors.size() &&
         std::ranges::all_of(monitors, [&](const Rect& monitor) {
           return std::ranges::any_of(windows, [&](const WindowInfo& cover) {
             return monitor.contains(cover.area) && fills(cover.area, monitor, managerKind_);
           });
         });
}

std::optional<WindowInfo> XDesk::awaitWindow(const WindowTest& test) const {
  std::optional<WindowInfo> window;
  until([&] { return (window = windows_->findViewable(test)).has_value(); });
  return window;
}

}  // namespace harness
