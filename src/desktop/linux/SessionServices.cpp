#include "desktop/linux/SessionServices.h"

#include <QGuiApplication>
#include <QStringList>
#include <array>
#include <optional>

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
  std::unique_ptr<SwaySession> sway = wayland ? SwaySession::open() : nullptr;
  std::unique_ptr<KWinWindows> kwin = wayland && !sway ? KWinWindows::open() : nullptr;
  std::optional<OtherApplications> others;
  QtScreens qtScreens;
  OwnWindows qtWindows;
  DesktopFacts qtFacts{[this] { return qtScreens.monitors(); }};
  WallpaperPictures pictures{facts()};
  SessionHotKeys hotKeys{x11 ? x11->hotKeys() : sway ? sway->hotKeys() : nullptr};
  std::optional<PlasmaPanels> plasmaPanels;
  QStringList missing;

  SessionRooms() {
    if (x11) x11->setBackdrops(&pictures);
    if (!wayland) return;
    wayland->setBackdrops(&pictures);
    plasmaPanels.emplace(QDBusConnection::sessionBus());
    wayland->setPanels([this] { return plasmaPanels->panels(); });
    if (sway) arrangeWallpaper();
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
    if (wayland->wallpaper() == nullptr) return;
    if (sway->stacksDownwards()) wayland->wallpaper()->standAboveOthers();
    facts().setBareDesktop(sway->wallpaper(facts().bareDesktop()));
  }
};

namespace {

using platform::port::HotKeys;
using platform::port::RunningApplications;
using platform::port::Screens;
using platform::port::Spaces;
using platform::port::WindowList;

template <class Service>
struct Candidate {
  const char* room;
  /// Null: not in this session.
  Service* (*offer)(SessionRooms& rooms);
};

template <class Service, auto getter>
constexpr Candidate<Service> x11{"X11", [](SessionRooms& rooms) -> Service* {
                                   return rooms.x11 ? (*rooms.x11.*getter)() : nullptr;
                                 }};

template <class Service, auto getter>
constexpr Candidate<Service> wayland{"Wayland", [](SessionRooms& rooms) -> Service* {
                                       return rooms.wayland ? (*rooms.wayland.*getter)() : nullptr;
                                     }};

using X11 = X11WindowSystem;
using Wayland = WaylandWindowSystem;

/// Of those that hide all others together.
RunningApplications* hiddenTogether(SessionRooms& rooms);

// In order of preference.
constexpr std::array kScreens{
    x11<Screens, &X11::screens>, wayland<Screens, &Wayland::screens>,
    Candidate<Screens>{"Qt", [](SessionRooms& rooms) -> Screens* { return &rooms.qtScreens; }}};
constexpr std::array kOwnWindows{
    x11<OwnWindows, &X11::ownWindows>, wayland<OwnWindows, &Wayland::ownWindows>,
    Candidate<OwnWindows>{"Qt", [](SessionRooms& rooms) { return &rooms.qtWindows; }}};
constexpr std::array kLegacyTray{x11<LegacyTray, &X11::legacyTray>};
constexpr std::array kCovers{x11<CoverWindows, &X11::covers>,
                             wayland<CoverWindows, &Wayland::covers>};
constexpr std::array kWindowList{x11<WindowList, &X11::windowList>,
                                 wayland<WindowList, &Wayland::windowList>};
constexpr std::array kSpaces{x11<Spaces, &X11::spaces>, wayland<Spaces, &Wayland::spaces>};
constexpr std::array kApplications{
    x11<RunningApplications, &X11::runningApplications>,
    Candidate<RunningApplications>{"all others at once", &hiddenTogether}};
constexpr std::array kWindowHiders{
    Candidate<WindowHider>{"sway",
                           [](SessionRooms& rooms) -> WindowHider* {
                             return rooms.sway ? rooms.sway->windowHider() : nullptr;
                           }},
    Candidate<WindowHider>{"KWin",
                           [](SessionRooms& rooms) -> WindowHider* { return rooms.kwin.get(); }},
    wayland<WindowHider, &Wayland::windowHider>};
constexpr std::array kKeyTranslator{x11<KeyTranslator, &X11::keyTranslator>,
                                    wayland<KeyTranslator, &Wayland::keyTranslator>};
constexpr std::array kHotKeys{
    Candidate<HotKeys>{"the session", [](SessionRooms& rooms) -> HotKeys* {
                         return rooms.hotKeys.isThere() ? &rooms.hotKeys : nullptr;
                       }}};

/// `without` says what the user then goes without; null where that needs no word.
template <class Candidates>
auto choose(SessionRooms& rooms, const Candidates& candidates, const char* without = nullptr)
    -> decltype(candidates.front().offer(rooms)) {
  for (const auto& candidate : candidates) {
    if (auto* service = candidate.offer(rooms)) return service;
  }
  if (without != nullptr) rooms.missing << QLatin1String(without);
  return nullptr;
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

}  // namespace linux_desktop
