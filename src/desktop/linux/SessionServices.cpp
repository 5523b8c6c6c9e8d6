#include "desktop/linux/SessionServices.h"

#include <QGuiApplication>
#include <QStringList>
#include <cstddef>
#include <optional>

#include "desktop/linux/gnome/CommandHotKeys.h"
#include "desktop/linux/gnome/GnomeSession.h"
#include "desktop/linux/gnome/IconSwitch.h"
#include "desktop/linux/keys/PortalHotKeys.h"
#include "desktop/linux/keys/SessionHotKeys.h"
#include "desktop/linux/kwin/KWinWindows.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/sway/SwaySession.h"
#include "desktop/linux/tray/PlasmaPanels.h"
#include "desktop/linux/wallpaper/WallpaperPictures.h"
#include "desktop/linux/wayland/WaylandWindowSystem.h"
#include "desktop/linux/windowsystem/MonitorScreens.h"
#include "desktop/linux/windowsystem/OtherApplications.h"
#include "desktop/linux/x11/X11WindowSystem.h"

namespace linux_desktop {

/// The rooms from which services come, those that are open in this session.
struct SessionRooms {
  std::unique_ptr<X11WindowSystem> x11 = X11WindowSystem::open();
  std::unique_ptr<WaylandWindowSystem> wayland = WaylandWindowSystem::open();
  std::unique_ptr<I3Session> i3 = x11 ? I3Session::open(x11->i3Socket()) : nullptr;
  std::unique_ptr<SwaySession> sway = wayland ? SwaySession::open(wayland->compositor()) : nullptr;
  std::unique_ptr<KWinWindows> kwin = wayland && !sway ? KWinWindows::open() : nullptr;
  std::unique_ptr<IconSwitch> iconSwitch = wayland ? IconSwitch::open() : nullptr;
  std::unique_ptr<GnomeSession> gnome = GnomeSession::open();
  std::unique_ptr<CommandHotKeys> commandHotKeys;
  std::optional<PortalHotKeys> portalHotKeys;
  std::optional<OtherApplications> others;
  std::optional<SessionHotKeys> hotKeys;
  QtScreens qtScreens;
  OwnWindows qtWindows;
  DesktopFacts qtFacts{[this] { return qtScreens.monitors(); }};
  WallpaperPictures pictures{facts()};
  PlasmaPanels plasmaPanels;
  QStringList missing;

  SessionRooms() {
    if (x11) x11->setBackdrops(&pictures);
    if (!wayland) return;
    wayland->setBackdrops(&pictures);
    wayland->setPanels([this] { return plasmaPanels.panels(); });
    if (!sway) return;
    arrangeWallpaper();
    sway->setKeymap([this] { return wayland->keymap(); });
    wayland->setKeymapChanged([this] { sway->keymapChanged(); });
    wayland->setBringer([this](const QString& title) { return sway->bringToUser(title); });
  }
  ~SessionRooms() {
    if (x11) x11->setBackdrops(nullptr);
    if (wayland) wayland->setBackdrops(nullptr);
  }
  SessionRooms(const SessionRooms&) = delete;
  SessionRooms& operator=(const SessionRooms&) = delete;

  [[nodiscard]] DesktopFacts& facts() {
    if (x11) return *x11->desktopFacts();
    return wayland ? *wayland->desktopFacts() : qtFacts;
  }
  /// sway shows pictures of its own.
  void arrangeWallpaper() {
    if (sway->stacksDownwards()) wayland->setFirstIsInFront();
    if (wayland->wallpaper() == nullptr) return;
    facts().setBareDesktop(sway->wallpaper(facts().bareDesktop()));
  }
};

namespace {

using platform::port::HotKeys;
using platform::port::RunningApplications;
using platform::port::Screens;
using platform::port::Spaces;
using platform::port::WindowList;

/// Null: not in this session.
template <class Service>
using Candidate = Service* (*)(SessionRooms& rooms);

/// What a room has to offer, where that is open.
template <auto room, auto getter>
constexpr auto of = [](SessionRooms& rooms) {
  const auto& open = rooms.*room;
  return open ? ((*open).*getter)() : nullptr;
};
template <auto getter>
constexpr auto x11 = of<&SessionRooms::x11, getter>;
template <auto getter>
constexpr auto wayland = of<&SessionRooms::wayland, getter>;
template <auto getter>
constexpr auto sway = of<&SessionRooms::sway, getter>;

template <auto getter>
constexpr auto gnome = of<&SessionRooms::gnome, getter>;

using X11 = X11WindowSystem;
using Wayland = WaylandWindowSystem;

/// Those of who assigns keys himself, where nobody else serves the session. Each takes time to ask,
/// and what Plasma's portal would do its own service does better.
HotKeys* portalHotKeys(SessionRooms& rooms);
HotKeys* commandHotKeys(SessionRooms& rooms);
/// The first of these.
HotKeys* assignedHotKeys(SessionRooms& rooms);
/// Those of our extension; of the former once that is turned off.
HotKeys* gnomeHotKeys(SessionRooms& rooms);
/// Our extension's; while that is off they are the icons'.
CoverFactory* gnomeCovers(SessionRooms& rooms);
/// The keys of whoever keeps them for this session.
HotKeys* sessionHotKeys(SessionRooms& rooms);
/// Of those that hide all others together.
RunningApplications* hiddenTogether(SessionRooms& rooms);

// In order of preference.
constexpr Candidate<Screens> kScreens[] = {
    x11<&X11::screens>, wayland<&Wayland::screens>,
    [](SessionRooms& rooms) -> Screens* { return &rooms.qtScreens; }};
constexpr Candidate<OwnWindows> kOwnWindows[] = {
    x11<&X11::ownWindows>, wayland<&Wayland::ownWindows>, gnome<&GnomeSession::ownWindows>,
    [](SessionRooms& rooms) { return &rooms.qtWindows; }};
constexpr Candidate<LegacyTray> kLegacyTray[] = {x11<&X11::legacyTray>};
constexpr Candidate<PanelButton> kPanelButton[] = {gnome<&GnomeSession::panelButton>};
constexpr Candidate<CoverFactory> kCovers[] = {
    x11<&X11::covers>, wayland<&Wayland::covers>, &gnomeCovers,
    [](SessionRooms& rooms) -> CoverFactory* { return rooms.iconSwitch.get(); }};
constexpr Candidate<WindowList> kWindowList[] = {x11<&X11::windowList>,
                                                 wayland<&Wayland::windowList>};
constexpr Candidate<Spaces> kSpaces[] = {x11<&X11::spaces>, wayland<&Wayland::spaces>};
constexpr Candidate<RunningApplications> kApplications[] = {
    // The shell does it without a show of each window, and keeps them where they are.
    [](SessionRooms& rooms) {
      const bool byShell = rooms.gnome && !rooms.gnome->isOff();
      return byShell || rooms.i3 ? hiddenTogether(rooms) : nullptr;
    },
    x11<&X11::runningApplications>, &hiddenTogether};
constexpr Candidate<WindowHider> kWindowHiders[] = {
    of<&SessionRooms::i3, &I3Session::windowHider>, sway<&SwaySession::windowHider>,
    gnome<&GnomeSession::windowHider>,
    [](SessionRooms& rooms) -> WindowHider* { return rooms.kwin.get(); },
    wayland<&Wayland::windowHider>};
constexpr Candidate<KeyTranslator> kKeyTranslator[] = {x11<&X11::keyTranslator>,
                                                       wayland<&Wayland::keyTranslator>};
constexpr Candidate<HotKeys> kAssigned[] = {&portalHotKeys, &commandHotKeys};
constexpr Candidate<HotKeys> kGrabs[] = {x11<&X11::hotKeys>, sway<&SwaySession::hotKeys>,
                                         &gnomeHotKeys, &assignedHotKeys};
constexpr Candidate<HotKeys> kHotKeys[] = {&sessionHotKeys};

/// `without` says what the user then goes without; null where that needs no word.
template <class Service, std::size_t count>
Service* choose(SessionRooms& rooms, const Candidate<Service> (&candidates)[count],
                const char* without = nullptr) {
  for (const auto& candidate : candidates) {
    if (auto* service = candidate(rooms)) return service;
  }
  if (without != nullptr) rooms.missing << QLatin1String(without);
  return nullptr;
}

HotKeys* portalHotKeys(SessionRooms& rooms) {
  if (KdeHotKeys::isSession() || !PortalHotKeys::isThere()) return nullptr;
  return &rooms.portalHotKeys.emplace();
}

HotKeys* commandHotKeys(SessionRooms& rooms) {
  rooms.commandHotKeys = CommandHotKeys::open();
  return rooms.commandHotKeys.get();
}

HotKeys* assignedHotKeys(SessionRooms& rooms) {
  return choose(rooms, kAssigned);
}

HotKeys* gnomeHotKeys(SessionRooms& rooms) {
  if (!rooms.gnome) return nullptr;
  rooms.gnome->hotKeys()->setOthers([&rooms] { return assignedHotKeys(rooms); });
  return rooms.gnome->hotKeys();
}

CoverFactory* gnomeCovers(SessionRooms& rooms) {
  if (!rooms.gnome) return nullptr;
  rooms.gnome->covers()->setOthers(rooms.iconSwitch.get());
  return rooms.gnome->covers();
}

HotKeys* sessionHotKeys(SessionRooms& rooms) {
  SessionHotKeys& keys = rooms.hotKeys.emplace(choose(rooms, kGrabs));
  return keys.isThere() ? &keys : nullptr;
}

RunningApplications* hiddenTogether(SessionRooms& rooms) {
  WindowHider* hider = choose(rooms, kWindowHiders);
  return hider == nullptr ? nullptr : &rooms.others.emplace(*hider);
}

}  // namespace

SessionServices::SessionServices()
    : rooms_(std::make_unique<SessionRooms>()),
      screens(*choose(*rooms_, kScreens)),
      ownWindows(*choose(*rooms_, kOwnWindows)),
      desktopPictures(rooms_->pictures),
      legacyTray(choose(*rooms_, kLegacyTray)),
      panelButton(choose(*rooms_, kPanelButton)),
      covers(choose(*rooms_, kCovers, "desktop icons are not covered")),
      windowList(choose(*rooms_, kWindowList)),
      spaces(choose(*rooms_, kSpaces)),
      runningApplications(choose(*rooms_, kApplications, "other applications are not hidden")),
      hotKeys(choose(*rooms_, kHotKeys, "shortcuts do not fire")),
      keyTranslator(choose(*rooms_, kKeyTranslator, "shortcuts cannot be recorded")) {
  if (rooms_->missing.isEmpty()) return;
  qCWarning(lcSession, "here (%s) %s; sound and notifications do not depend on that",
            qPrintable(QGuiApplication::platformName()),
            qPrintable(rooms_->missing.join(QLatin1String(", "))));
}

SessionServices::~SessionServices() = default;

void SessionServices::follow(QObject& listener, const std::function<void()>& changed) {
  if (rooms_->gnome) rooms_->gnome->follow(listener, changed);
}

}  // namespace linux_desktop
