#pragma once

#include <xcb/xcb.h>

#include <QRect>
#include <array>
#include <cstdlib>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace linux_desktop {

struct FreeReply {
  void operator()(void* memory) const { std::free(memory); }
};

/// A reply, event or error of the X server, which xcb hands over to its caller to free.
template <class T>
using XReply = std::unique_ptr<T, FreeReply>;

/// One of the XCB_..._NOTIFY numbers and their like, whoever has sent the event.
[[nodiscard]] inline std::uint8_t typeOf(const xcb_generic_event_t& event) {
  constexpr std::uint8_t kSentByAClient = 0x80;
  return static_cast<std::uint8_t>(event.response_type & ~kSentByAClient);
}

struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using XConnection = std::unique_ptr<xcb_connection_t, Disconnect>;

struct XProperty {
  xcb_window_t window;
  xcb_atom_t name;
};

/// What a property holds; nothing where it is absent or its window is gone.
class XPropertyValue {
 public:
  explicit XPropertyValue(XReply<xcb_get_property_reply_t> reply) : reply_(std::move(reply)) {}

  /// The items of a property of 32-bit numbers.
  [[nodiscard]] std::span<const std::uint32_t> numbers() const;
  [[nodiscard]] std::optional<std::uint32_t> number() const;
  [[nodiscard]] bool contains(std::uint32_t item) const;
  /// The parts of a text, which null bytes divide.
  [[nodiscard]] std::vector<std::string> texts() const;
  [[nodiscard]] std::string text() const;

 private:
  XReply<xcb_get_property_reply_t> reply_;
};

/// The answers to one question about many things, in one round trip: all questions are on their
/// way before the first answer is waited for. Null where there is none. `ask` makes a question of
/// a thing; `answer` is xcb's function that waits for it.
template <class Things, class Ask, class Answer>
[[nodiscard]] auto answersTo(xcb_connection_t* connection, const Things& things, const Ask& ask,
                             const Answer& answer) {
  using Cookie = decltype(ask(*things.begin()));
  using Reply = std::remove_pointer_t<decltype(answer(connection, Cookie{}, nullptr))>;
  std::vector<Cookie> cookies;
  for (const auto& thing : things) cookies.push_back(ask(thing));
  std::vector<XReply<Reply>> replies;
  replies.reserve(cookies.size());
  for (const Cookie& cookie : cookies) replies.emplace_back(answer(connection, cookie, nullptr));
  return replies;
}

/// A connection of our own to the X server that the interface is on. Its questions wait for the
/// server's answer. A window that is gone answers nothing. Main thread only.
class XServer {
 public:
  /// Null where the interface is not on an X server, or that cannot be reached.
  [[nodiscard]] static std::unique_ptr<XServer> connect();

  [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
  /// The one over which Qt speaks to the same server.
  [[nodiscard]] static xcb_connection_t* connectionOfQt();
  [[nodiscard]] xcb_window_t root() const { return root_; }
  /// How the screen of the root window is made: its depth, its colours.
  [[nodiscard]] const xcb_screen_t& screen() const;
  /// Asked for once.
  [[nodiscard]] xcb_atom_t atom(std::string_view name);
  /// Of a selection that each screen has one of, by the name without the screen's number.
  [[nodiscard]] xcb_atom_t atomOfScreen(const std::string& name) {
    return atom(name + std::to_string(screen_));
  }

  /// Properties in the order of the question, however many, in one round trip.
  [[nodiscard]] std::vector<XPropertyValue> read(std::span<const XProperty> properties);
  /// The items of a property of 32-bit numbers, and the first of them.
  [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view property);
  [[nodiscard]] std::optional<std::uint32_t> number(xcb_window_t window, std::string_view property);
  /// The same of many windows, in one round trip.
  [[nodiscard]] std::vector<std::vector<std::uint32_t>> numbersOf(
      std::span<const xcb_window_t> windows, std::string_view property);

  // What follows goes out with the next flush of `over`, another connection of this program, where
  // it is to come after what was sent there; else of this one.

  /// Gives a window a property of 32-bit numbers; none: it has that property no more.
  void setNumbers(xcb_window_t window, std::string_view property, xcb_atom_t type,
                  const std::vector<std::uint32_t>& numbers, xcb_connection_t* over = nullptr);
  /// Asks the window manager for something with a window, as EWMH and ICCCM 4.1.4 do.
  void askManager(xcb_window_t window, std::string_view request,
                  const std::array<std::uint32_t, 5>& details, xcb_connection_t* over = nullptr);

  /// Where a window is on the root window, in pixels, without what a window manager adds to it.
  [[nodiscard]] std::optional<QRect> geometry(xcb_window_t window);
  /// None for a window that is gone, and for the root window.
  [[nodiscard]] xcb_window_t parentOf(xcb_window_t window);
  /// Those of each window, from the bottom to the top, in one round trip.
  [[nodiscard]] std::vector<std::vector<xcb_window_t>> childrenOf(
      std::span<const xcb_window_t> parents);
  /// What the window manager that runs calls itself; empty where none does.
  [[nodiscard]] std::string managerName();
  /// Whether that one says that it knows a hint of EWMH.
  [[nodiscard]] bool managerKnows(std::string_view hint);
  /// Whether windows may be translucent and round now.
  [[nodiscard]] bool isComposited();
  [[nodiscard]] xcb_window_t ownerOf(xcb_atom_t selection);
  /// The number of XInput, of version 2.2 at least; none where the server lacks that.
  [[nodiscard]] std::optional<std::uint8_t> inputExtension();
  /// The server's time now. Events that arrive meanwhile are kept for `nextEvent`.
  [[nodiscard]] xcb_timestamp_t time();

  /// The next event or error that has arrived, in the order of arrival; null when there is none.
  [[nodiscard]] XReply<xcb_generic_event_t> nextEvent();

 private:
  XServer(XConnection connection, int screen);

  XConnection connection_;
  int screen_;
  xcb_window_t root_ = XCB_NONE;
  xcb_window_t own_ = XCB_NONE;
  std::map<std::string, xcb_atom_t, std::less<>> atoms_;
  std::deque<XReply<xcb_generic_event_t>> kept_;
};

}  // namespace linux_desktop
