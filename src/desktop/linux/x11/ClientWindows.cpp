#include "desktop/linux/x11/ClientWindows.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace linux_desktop {
namespace {

/// A window manager that lives has a window whose property of this name says the window itself.
constexpr std::string_view kManagerCheck = "_NET_SUPPORTING_WM_CHECK";

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
constexpr std::array<std::string_view, kRootProperties> kOfRoot{
    "_NET_CLIENT_LIST",   "_NET_CLIENT_LIST_STACKING",
    "_NET_ACTIVE_WINDOW", "_NET_CURRENT_DESKTOP",
    "_NET_SUPPORTED",     kManagerCheck,
    "_CALMDECK_ORDER",    "_CALMDECK_ACTIVE"};

/// What is read of each window.
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
constexpr std::array<std::string_view, kWindowProperties> kOfWindow{
    "_NET_WM_STATE",     "_NET_WM_WINDOW_TYPE", "_CALMDECK_HIDDEN",
    "_NET_WM_DESKTOP",   "_NET_WM_PID",         "WM_CLIENT_LEADER",
    "WM_CLIENT_MACHINE", "_GTK_APPLICATION_ID", "WM_TRANSIENT_FOR",
    "WM_CLASS"};

constexpr std::string_view kMinimised = "_NET_WM_STATE_HIDDEN";

struct TypeRow {
  std::string_view type;
  ClientKind kind;
};
constexpr std::array kTypes{
    TypeRow{"_NET_WM_WINDOW_TYPE_NORMAL", ClientKind::Normal},
    TypeRow{"_NET_WM_WINDOW_TYPE_DIALOG", ClientKind::Dialog},
    TypeRow{"_NET_WM_WINDOW_TYPE_DESKTOP", ClientKind::Furniture},
    TypeRow{"_NET_WM_WINDOW_TYPE_DOCK", ClientKind::Furniture},
    TypeRow{"_NET_WM_WINDOW_TYPE_NOTIFICATION", ClientKind::Furniture},
    TypeRow{"_NET_WM_WINDOW_TYPE_SPLASH", ClientKind::Furniture},
};

std::vector<xcb_window_t> listIn(const XPropertyValue& value) {
  const auto items = value.numbers();
  return {items.begin(), items.end()};
}

/// What changes from one moment to the next.
void takeRoot(std::span<const XPropertyValue> root, ClientList& list) {
  list.stacking = listIn(root[kStacking]);
  if (list.habits.stacksDownwards) std::ranges::reverse(list.stacking);
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

const ClientWindow* ClientList::find(xcb_window_t window) const {
  const auto found = std::ranges::find(windows, window, &ClientWindow::id);
  return found == windows.end() ? nullptr : &*found;
}

const ClientWindow* ClientList::workWindow(xcb_window_t window) const {
  const ClientWindow* found = find(window);
  return found != nullptr && found->kind != ClientKind::Furniture ? found : nullptr;
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
  questions = {{check, server_.atom(kManagerCheck)}, {check, server_.atom("_NET_WM_NAME")}};
  const std::size_t first = questions.size();
  for (const xcb_window_t id : ids) {
    for (const std::string_view name : kOfWindow) questions.push_back({id, server_.atom(name)});
  }
  const auto values = server_.read(questions);

  ClientList list;
  if (check == XCB_NONE || values[0].number() != check) return list;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const auto of = std::span(values).subspan(first + i * kWindowProperties, kWindowProperties);
    list.windows.push_back(windowOf(ids[i], of));
  }
  list.habits = habitsOf(values[1].text());
  takeRoot(root, list);
  const auto knows = [&](std::string_view hint) {
    return root[kSupported].contains(server_.atom(hint));
  };
  list.canMinimise = list.habits.hides && knows(kMinimised);
  list.canRestack = list.habits.restacks && knows("_NET_RESTACK_WINDOW");
  list.manager = {check, knows("_NET_REQUEST_FRAME_EXTENTS")};
  return list;
}

bool ClientWindows::refresh(ClientList& list) const {
  std::vector<XProperty> questions = rootQuestions();
  questions.push_back({list.manager.window, server_.atom(kManagerCheck)});
  const std::size_t first = questions.size();
  constexpr std::array kChanging{kState, kMark, kDesktop};
  for (const ClientWindow& window : list.windows) {
    for (const WindowProperty changing : kChanging) {
      questions.push_back({window.id, server_.atom(kOfWindow[changing])});
    }
  }
  const auto values = server_.read(questions);
  const auto& own = values[kRootProperties];
  if (own.number() != list.manager.window ||
      !std::ranges::equal(values[kList].numbers(), list.windows, {}, {}, &ClientWindow::id)) {
    return false;
  }
  takeRoot(values, list);
  auto value = values.begin() + static_cast<std::ptrdiff_t>(first);
  for (ClientWindow& window : list.windows) {
    window.minimised = value++->contains(server_.atom(kMinimised));
    window.mark = value++->number();
    window.desktop = value++->number();
  }
  return true;
}

std::vector<XProperty> ClientWindows::rootQuestions() const {
  std::vector<XProperty> questions;
  questions.reserve(kOfRoot.size());
  for (const std::string_view name : kOfRoot) {
    questions.push_back({server_.root(), server_.atom(name)});
  }
  return questions;
}

ClientWindow ClientWindows::windowOf(xcb_window_t id,
                                     std::span<const XPropertyValue> values) const {
  ClientWindow window;
  window.id = id;
  window.kind = kindOf(values[kType].numbers());
  if (window.kind != ClientKind::Furniture &&
      values[kState].contains(server_.atom("_NET_WM_STATE_SKIP_TASKBAR"))) {
    window.kind = ClientKind::Accessory;
  }
  window.minimised = values[kState].contains(server_.atom(kMinimised));
  window.mark = values[kMark].number();
  window.transientFor = values[kTransientFor].number().value_or(XCB_NONE);
  window.desktop = values[kDesktop].number();
  window.pid = values[kPid].number();
  window.leader = values[kLeader].number().value_or(XCB_NONE);
  window.gtkApplicationId = values[kGtkId].text();
  window.machine = values[kMachine].text();
  const std::vector<std::string> names = values[kClass].texts();
  // The instance comes first.
  if (names.size() > 1) window.className = names[1];
  return window;
}

ClientKind ClientWindows::kindOf(std::span<const std::uint32_t> types) const {
  // The first that is known counts; toolkits put their own kinds before it.
  for (const xcb_atom_t type : types) {
    const auto* row = std::ranges::find_if(
        kTypes, [&](const TypeRow& known) { return type == server_.atom(known.type); });
    if (row != kTypes.end()) return row->kind;
  }
  return types.empty() ? ClientKind::Normal : ClientKind::Accessory;
}

std::unordered_set<xcb_window_t> ClientWindows::minimisedOf(
    std::span<const xcb_window_t> windows) const {
  std::vector<XProperty> questions;
  for (const xcb_window_t id : windows) questions.push_back({id, server_.atom(kOfWindow[kState])});
  const auto states = server_.read(questions);
  std::unordered_set<xcb_window_t> minimised;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    if (states[i].contains(server_.atom(kMinimised))) minimised.insert(windows[i]);
  }
  return minimised;
}

namespace {

/// As a task bar: window managers do what it asks for without doubting.
constexpr std::uint32_t kFromPager = 2;
constexpr std::uint32_t kIconicState = 3;
enum StateChange : std::uint32_t { kRemove = 0, kAdd = 1 };

}  // namespace

void ClientWindows::minimise(xcb_window_t window) const {
  // Some take windows of other workspaces for minimised already and pass over the first.
  server_.askManager(window, "WM_CHANGE_STATE", {kIconicState});
  server_.askManager(window, "_NET_WM_STATE", {kAdd, server_.atom(kMinimised), 0, kFromPager});
}

void ClientWindows::restore(xcb_window_t window) const {
  server_.askManager(window, "_NET_WM_STATE", {kRemove, server_.atom(kMinimised), 0, kFromPager});
}

void ClientWindows::activate(xcb_window_t window, xcb_timestamp_t time) const {
  server_.askManager(window, "_NET_ACTIVE_WINDOW", {kFromPager, time});
}

void ClientWindows::moveToDesktop(xcb_window_t window, std::uint32_t desktop) const {
  server_.askManager(window, "_NET_WM_DESKTOP", {desktop, kFromPager});
}

void ClientWindows::restack(xcb_window_t window, xcb_window_t sibling) const {
  const std::uint32_t mode = sibling == XCB_NONE ? XCB_STACK_MODE_BELOW : XCB_STACK_MODE_ABOVE;
  server_.askManager(window, "_NET_RESTACK_WINDOW", {kFromPager, sibling, mode});
}

void ClientWindows::mark(xcb_window_t window, std::optional<std::uint32_t> mark) const {
  std::vector<std::uint32_t> value;
  if (mark) value.push_back(*mark);
  server_.setNumbers(window, "_CALMDECK_HIDDEN", XCB_ATOM_CARDINAL, value);
}

void ClientWindows::remember(const std::vector<xcb_window_t>& bottomToTop,
                             xcb_window_t active) const {
  std::vector<xcb_window_t> actives{active};
  std::erase(actives, XCB_NONE);
  server_.setNumbers(server_.root(), "_CALMDECK_ORDER", XCB_ATOM_WINDOW, bottomToTop);
  server_.setNumbers(server_.root(), "_CALMDECK_ACTIVE", XCB_ATOM_WINDOW, actives);
}

}  // namespace linux_desktop
