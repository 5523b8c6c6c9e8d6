#include "desktop/linux/x11/XCovers.h"

#include <QMetaObject>
#include <algorithm>
#include <chrono>

namespace linux_desktop {
namespace {

/// Two programs that each want to be on top do not keep the server busy.
constexpr std::chrono::milliseconds kBetweenLooks{50};

/// Whether icons stand above the cover where it is. A cover that is not on the screen is not under
/// anything.
bool isUnderIcons(const WindowStack& stack, const CoverSurface& cover) {
  const auto own =
      std::ranges::find(stack.desktopWindows, cover.window(), &WindowStack::DesktopWindow::window);
  if (own == stack.desktopWindows.end()) return false;
  const WindowStack::DesktopWindow* icons = stack.iconsOn(cover.place());
  return icons != nullptr && icons->level > own->level;
}

std::set<xcb_window_t> iconsIn(const WindowStack& stack) {
  std::set<xcb_window_t> icons;
  for (const WindowStack::DesktopWindow& window : stack.desktopWindows) {
    if (!window.ours) icons.insert(window.window);
  }
  return icons;
}

}  // namespace

CoverKeeper::CoverKeeper(XEvents& events, std::function<void()> iconsChanged)
    : events_(events),
      server_(events.server()),
      iconsChanged_(std::move(iconsChanged)),
      nextLook_(kBetweenLooks, [this] { look(); }) {}

CoverKeeper::Manager CoverKeeper::readManager() {
  // EWMH 1.5: a window manager that lives has a window whose property names itself.
  const auto check = server_.number(server_.root(), "_NET_SUPPORTING_WM_CHECK");
  if (!check || server_.number(*check, "_NET_SUPPORTING_WM_CHECK") != check) return Manager::None;
  habits_ = habitsOf(server_.managerName());
  return server_.managerKnows("_NET_WM_WINDOW_TYPE_DESKTOP") ? Manager::TakesDesktopWindows
                                                             : Manager::Other;
}

void CoverKeeper::learnManager() {
  // A second cover would wait until the window manager, which keeps others out of the server
  // meanwhile, has taken in the first.
  if (std::exchange(managerIsFresh_, true)) return;
  manager_ = readManager();
  QMetaObject::invokeMethod(
      &context_, [this] { managerIsFresh_ = false; }, Qt::QueuedConnection);
}

CoverStand CoverKeeper::standFor(const QRect& area) {
  learnManager();
  return standFor(events_.stack(), area);
}

CoverStand CoverKeeper::standFor(const WindowStack& stack, const QRect& area) const {
  const bool managed = manager_ == Manager::TakesDesktopWindows;
  const bool byType = habits_.goesByTypeAlone;
  // A window manager that knows no desktop windows takes icons for an ordinary window.
  const bool standsAlone = manager_ == Manager::Other || byType;
  const auto* icons = standsAlone ? nullptr : stack.iconsOn(area);
  if (icons == nullptr) return {.managed = managed, .byTypeAlone = byType};
  return {managed, icons->window, stack.topLevels[icons->level].window};
}

void CoverKeeper::add(XCoverWindow& cover) {
  covers_.push_back(&cover);
  if (covers_.size() > 1) return;
  icons_ = iconsIn(events_.stack());
  // The first look comes when the window manager has had time to take the covers in.
  rest_ = QDeadlineTimer(kBetweenLooks);
  watch_ = events_.watch(server_.root(),
                         XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE,
                         [this](const xcb_generic_event_t& event) { handle(event); });
}

void CoverKeeper::remove(XCoverWindow& cover) {
  std::erase(covers_, &cover);
  if (!covers_.empty()) return;
  watch_.reset();
  nextLook_.stop();
  known_.clear();
}

void CoverKeeper::arrived(const XCoverWindow& arrival, const QRect& area) {
  for (XCoverWindow* cover : covers_) {
    if (cover != &arrival) cover->giveWayAt(area);
  }
}

void CoverKeeper::handle(const xcb_generic_event_t& event) {
  switch (typeOf(event)) {
    case XCB_PROPERTY_NOTIFY:
      handleProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event).atom);
      break;
    case XCB_CIRCULATE_NOTIFY:
      lookSoon();
      break;
    case XCB_MAP_NOTIFY:
      // Icons of a program that has just come. Managed ones show in the list of clients.
      if (manager_ != Manager::TakesDesktopWindows) lookSoon();
      [[fallthrough]];
    case XCB_CONFIGURE_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_DESTROY_NOTIFY:
    case XCB_REPARENT_NOTIFY:
      // All of these have the window at one place.
      if (concernsUs(reinterpret_cast<const xcb_map_notify_event_t&>(event).window)) lookSoon();
      break;
    default:
      break;
  }
}

void CoverKeeper::handleProperty(xcb_atom_t property) {
  if (property == server_.atom("_NET_SUPPORTING_WM_CHECK") ||
      property == server_.atom("_NET_SUPPORTED")) {
    managerChanged_ = true;
    lookSoon();
  } else if (property == server_.atom("_NET_CLIENT_LIST") ||
             property == server_.atom("_NET_CLIENT_LIST_STACKING")) {
    lookSoon();
  }
}

bool CoverKeeper::concernsUs(xcb_window_t window) const {
  return known_.contains(window) || std::ranges::any_of(covers_, [window](XCoverWindow* cover) {
           return cover->surface() != nullptr && cover->surface()->window() == window;
         });
}

void CoverKeeper::lookSoon() {
  if (nextLook_.isActive()) return;
  nextLook_.start(std::chrono::milliseconds(rest_.remainingTime()));
}

void CoverKeeper::look() {
  rest_ = QDeadlineTimer(kBetweenLooks);
  if (managerChanged_) manager_ = readManager();
  managerChanged_ = false;
  const WindowStack stack = WindowStack::read(server_);
  known_.clear();
  for (const WindowStack::DesktopWindow& window : stack.desktopWindows) {
    known_.insert({window.window, stack.topLevels[window.level].window});
  }
  for (XCoverWindow* cover : std::vector(covers_)) look(stack, *cover);
  std::set<xcb_window_t> icons = iconsIn(stack);
  if (icons == icons_) return;
  icons_ = std::move(icons);
  iconsChanged_();
}

void CoverKeeper::look(const WindowStack& stack, XCoverWindow& cover) {
  CoverSurface* surface = cover.surface();
  if (surface == nullptr) return;
  CoverStand wanted = standFor(stack, surface->place());
  // Without a window manager a window stands where the last one left it.
  if (manager_ == Manager::None) wanted.managed = surface->stand().managed;
  const bool otherIcons =
      wanted.iconWindow != XCB_NONE && wanted.iconWindow != surface->stand().iconWindow;
  if (wanted.managed != surface->stand().managed || (habits_.paintsByArrival && otherIcons)) {
    cover.remake(wanted);
    return;
  }
  if (wanted != surface->stand()) surface->follow(wanted);
  if (isUnderIcons(stack, *surface)) surface->restack(wanted);
}

XCoverWindow::XCoverWindow(platform::NSWindow& window, XEvents& events, const XScreens& screens,
                           CoverKeeper& keeper)
    : CoverPeer(window), events_(events), screens_(screens), keeper_(keeper) {}

XCoverWindow::~XCoverWindow() {
  hide();
}

std::optional<QRect> XCoverWindow::place() const {
  return screens_.points(window().frame());
}

bool XCoverWindow::fits(const XPicture& picture, const QRect& place) const {
  return picture.size() == place.size();
}

std::unique_ptr<CoverSurface> XCoverWindow::make(const QRect& place,
                                                 std::shared_ptr<const XPicture> picture,
                                                 std::function<void()> arrived) {
  const CoverStand stand = stand_ ? *std::exchange(stand_, std::nullopt) : keeper_.standFor(place);
  auto surface =
      std::make_unique<CoverSurface>(events_, place, std::move(picture), stand, std::move(arrived));
  surface->map();
  return surface;
}

void XCoverWindow::remake(const CoverStand& stand) {
  stand_ = stand;
  putUp(surface()->place(), surface()->picture());
}

std::unique_ptr<platform::port::WindowPeer> XCovers::createCover(platform::NSWindow& window,
                                                                 platform::port::WindowClient&) {
  return std::make_unique<XCoverWindow>(window, events_, screens_, keeper_);
}

}  // namespace linux_desktop
