#include "desktop/linux/x11/ClientWindows.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace linux_desktop {
namespace {

/// In the order of the enumeration.
constexpr std::array<std::string_view, static_cast<std::size_t>(ClientAtom::Count)> kNames{
    "_NET_SUPPORTED",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_WM_NAME",
    "_NET_CLIENT_LIST",
    "_NET_CLIENT_LIST_STACKING",
    "_NET_ACTIVE_WINDOW",
    "_NET_CURRENT_DESKTOP",
    "_NET_RESTACK_WINDOW",
    "_NET_REQUEST_FRAME_EXTENTS",
    "_NET_FRAME_EXTENTS",
    "WM_CHANGE_STATE",
    "_NET_WM_STATE",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_STATE_SKIP_TASKBAR",
    "_NET_WM_DESKTOP",
    "_NET_WM_PID",
    "WM_CLIENT_LEADER",
    "WM_CLIENT_MACHINE",
    "_GTK_APPLICATION_ID",
    "_CALMDECK_HIDDEN",
    "_CALMDECK_ORDER",
    "_CALMDECK_ACTIVE",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_WINDOW_TYPE_NOTIFICATION",
    "_NET_WM_WINDOW_TYPE_SPLASH",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_DIALOG",
};

}  // namespace

ClientAtoms::ClientAtoms(XServer& server) {
  std::array<xcb_intern_atom_cookie_t, kNames.size()> cookies{};
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    cookies[i] = xcb_intern_atom(server.get(), 0, static_cast<std::uint16_t>(kNames[i].size()),
                                 kNames[i].data());
  }
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    const XReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(server.get(), cookies[i], nullptr));
    if (reply) atoms_[i] = reply->atom;
  }
}

namespace {

/// What is read of the root window.
enum RootProperty : std::size_t {
  kList,
  kStacking,
  kActive,
  kCurrentDesktop,
  kSupported,
  kCheck,
  kOrder,
  kRememberedActive,
  kRootProperties
};
constexpr std::array<ClientAtom, kRootProperties> kOfRoot{
    ClientAtom::ClientList,     ClientAtom::ClientListStacking, ClientAtom::ActiveWindow,
    ClientAtom::CurrentDesktop, ClientAtom::Supported,          ClientAtom::SupportingWmCheck,
    ClientAtom::HiddenOrder,    ClientAtom::HiddenActive};

/// What is read of each window, beside those that the X protocol itself names.
enum WindowProperty : std::size_t {
  kState,
  kType,
  kMark,
  kDesktop,
  kPid,
  kLeader,
  kMachine,
  kGtkId,
  kTransientFor,
  kClass,
  kWindowProperties
};
constexpr std::array<ClientAtom, kTransientFor> kOfWindow{
    ClientAtom::State,         ClientAtom::WindowType,
    ClientAtom::HiddenMark,    ClientAtom::Desktop,
    ClientAtom::Pid,           ClientAtom::ClientLeader,
    ClientAtom::ClientMachine, ClientAtom::GtkApplicationId};

std::vector<xcb_window_t> listIn(const XPropertyValue& value) {
  const auto items = value.numbers();
  return {items.begin(), items.end()};
}

std::optional<HiddenMark> markIn(const XPropertyValue& value) {
  const auto mark = value.number();
  if (!mark) return std::nullopt;
  return *mark == 0 ? HiddenMark::BroughtForward : HiddenMark::Hidden;
}

/// Bottom to top.
std::vector<xcb_window_t> stackingIn(const XPropertyValue& value, const HidingManners& manners) {
  std::vector<xcb_window_t> stacking = listIn(value);
  if (manners.stacksDownwards) std::ranges::reverse(stacking);
  return stacking;
}

/// What changes from one moment to the next.
void takeRoot(std::span<const XPropertyValue> root, ClientList& list) {
  list.stacking = stackingIn(root[kStacking], list.manners);
  list.rememberedOrder = listIn(root[kOrder]);
  list.active = root[kActive].number().value_or(XCB_NONE);
  list.rememberedActive = root[kRememberedActive].number().value_or(XCB_NONE);
  list.currentDesktop = root[kCurrentDesktop].number().value_or(0);
}

}  // namespace

std::vector<xcb_window_t> ClientList::knownOrder() const {
  std::unordered_set<xcb_window_t> broughtForward;
  for (const ClientWindow& window : windows) {
    if (window.mark && !window.isHidden()) broughtForward.insert(window.id);
  }
  std::vector<xcb_window_t> order = rememberedOrder;
  std::erase_if(order, [&](xcb_window_t window) { return broughtForward.contains(window); });
  return order;
}

const ClientWindow* ClientList::workWindow(xcb_window_t window) const {
  const auto found = std::ranges::find(windows, window, &ClientWindow::id);
  const bool isOne = found != windows.end() && found->kind != ClientKind::Furniture;
  return isOne ? &*found : nullptr;
}

bool ClientList::isHere(const ClientWindow& window) const {
  return !window.isOnOneDesktop() || *window.desktop == currentDesktop;
}

ClientList ClientWindows::read() const {
  std::vector<XProperty> questions = rootQuestions();
  const auto root = server_.read(questions);
  const std::vector<xcb_window_t> ids = listIn(root[kList]);
  const xcb_window_t check = root[kCheck].number().value_or(XCB_NONE);

  // A window manager that died may have left its lists behind, but not its own window.
  questions = {{check, atoms_[ClientAtom::SupportingWmCheck]}, {check, atoms_[ClientAtom::WmName]}};
  const std::size_t first = questions.size();
  for (const xcb_window_t id : ids) {
    for (const ClientAtom name : kOfWindow) questions.push_back({id, atoms_[name]});
    questions.push_back({id, XCB_ATOM_WM_TRANSIENT_FOR});
    questions.push_back({id, XCB_ATOM_WM_CLASS});
  }
  const auto values = server_.read(questions);

  ClientList list;
  if (check == XCB_NONE || values[0].number() != check) return list;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const auto of = std::span(values).subspan(first + i * kWindowProperties, kWindowProperties);
    list.windows.push_back(windowOf(ids[i], of));
  }
  list.windowManager = values[1].text();
  if (list.windowManager.empty()) list.windowManager = "unnamed";
  list.manners = hidingMannersOf(list.windowManager);
  takeRoot(root, list);
  list.canMinimise =
      list.manners.hides && root[kSupported].contains(atoms_[ClientAtom::StateHidden]);
  list.canRestack =
      list.manners.restacks && root[kSupported].contains(atoms_[ClientAtom::RestackWindow]);
  list.manager = {check, root[kSupported].contains(atoms_[ClientAtom::RequestFrameExtents])};
  return list;
}

bool ClientWindows::refresh(ClientList& list) const {
  std::vector<XProperty> questions = rootQuestions();
  questions.push_back({list.manager.window, atoms_[ClientAtom::SupportingWmCheck]});
  const std::size_t first = questions.size();
  for (const ClientWindow& window : list.windows) {
    questions.push_back({window.id, atoms_[ClientAtom::State]});
    questions.push_back({window.id, atoms_[ClientAtom::HiddenMark]});
  }
  const auto values = server_.read(questions);
  const auto& own = values[kRootProperties];
  if (own.number() != list.manager.window ||
      !std::ranges::equal(values[kList].numbers(), list.windows, {}, {}, &ClientWindow::id)) {
    return false;
  }
  takeRoot(values, list);
  for (std::size_t i = 0; i < list.windows.size(); ++i) {
    ClientWindow& window = list.windows[i];
    window.minimised = values[first + 2 * i].contains(atoms_[ClientAtom::StateHidden]);
    window.mark = markIn(values[first + 2 * i + 1]);
  }
  return true;
}

std::vector<XProperty> ClientWindows::rootQuestions() const {
  std::vector<XProperty> questions;
  questions.reserve(kOfRoot.size());
  for (const ClientAtom name : kOfRoot) questions.push_back({server_.root(), atoms_[name]});
  return questions;
}

ClientWindow ClientWindows::windowOf(xcb_window_t id,
                                     std::span<const XPropertyValue> values) const {
  ClientWindow window;
  window.id = id;
  window.kind = kindOf(values[kType].numbers());
  if (window.kind != ClientKind::Furniture &&
      values[kState].contains(atoms_[ClientAtom::StateSkipTaskbar])) {
    window.kind = ClientKind::Accessory;
  }
  window.minimised = values[kState].contains(atoms_[ClientAtom::StateHidden]);
  window.mark = markIn(values[kMark]);
  window.transientFor = values[kTransientFor].number().value_or(XCB_NONE);
  window.desktop = values[kDesktop].number();
  window.pid = values[kPid].number();
  window.leader = values[kLeader].number().value_or(XCB_NONE);
  window.gtkApplicationId = values[kGtkId].text();
  window.machine = values[kMachine].text();
  const std::vector<std::string> names = values[kClass].texts();
  if (!names.empty()) window.instance = names[0];
  if (names.size() > 1) window.className = names[1];
  return window;
}

ClientKind ClientWindows::kindOf(std::span<const std::uint32_t> types) const {
  // The first that is known counts; toolkits put their own kinds before it.
  for (const xcb_atom_t type : types) {
    if (type == atoms_[ClientAtom::NormalType]) return ClientKind::Normal;
    if (type == atoms_[ClientAtom::DialogType]) return ClientKind::Dialog;
    for (const ClientAtom furniture : {ClientAtom::DesktopType, ClientAtom::DockType,
                                       ClientAtom::NotificationType, ClientAtom::SplashType}) {
      if (type == atoms_[furniture]) return ClientKind::Furniture;
    }
  }
  return types.empty() ? ClientKind::Normal : ClientKind::Accessory;
}

std::unordered_set<xcb_window_t> ClientWindows::minimisedOf(
    std::span<const xcb_window_t> windows) const {
  std::vector<XProperty> questions;
  for (const xcb_window_t id : windows) questions.push_back({id, atoms_[ClientAtom::State]});
  const auto states = server_.read(questions);
  std::unordered_set<xcb_window_t> minimised;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    if (states[i].contains(atoms_[ClientAtom::StateHidden])) minimised.insert(windows[i]);
  }
  return minimised;
}

ClientWindows::Places ClientWindows::placesOf(std::span<const xcb_window_t> windows,
                                              const HidingManners& manners) const {
  std::vector<XProperty> questions{{server_.root(), atoms_[ClientAtom::ClientListStacking]},
                                   {server_.root(), atoms_[ClientAtom::ActiveWindow]}};
  const std::size_t first = questions.size();
  for (const xcb_window_t id : windows) {
    questions.push_back({id, atoms_[ClientAtom::Desktop]});
    questions.push_back({id, atoms_[ClientAtom::State]});
  }
  const auto values = server_.read(questions);
  Places places;
  places.stacking = stackingIn(values[0], manners);
  places.active = values[1].number().value_or(XCB_NONE);
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const auto& desktop = values[first + 2 * i];
    const auto& state = values[first + 2 * i + 1];
    if (const auto number = desktop.number()) places.desktops.emplace(windows[i], *number);
    if (state.contains(atoms_[ClientAtom::StateHidden])) places.minimised.insert(windows[i]);
  }
  return places;
}

}  // namespace linux_desktop
