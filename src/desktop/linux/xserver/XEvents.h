#pragma once

#include <QMetaObject>
#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "desktop/linux/xserver/WindowStack.h"
#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// What the server says as one turn of the event loop sees it: asked for at the first call of a
/// turn, and forgotten at its end. One toggle needs it for each monitor several times. Main thread
/// only.
template <class Answer>
class OncePerTurn {
 public:
  explicit OncePerTurn(std::function<Answer()> ask) : ask_(std::move(ask)) {}

  [[nodiscard]] const Answer& now() {
    if (!answer_) {
      answer_.emplace(ask_());
      QMetaObject::invokeMethod(
          &context_, [this] { forget(); }, Qt::QueuedConnection);
    }
    return *answer_;
  }
  /// It may be another by now.
  void forget() { answer_.reset(); }

 private:
  std::function<Answer()> ask_;
  std::optional<Answer> answer_;
  QObject context_;
};

/// Hands the events of one connection to those who asked for them. Wakes the program only for what
/// somebody watches. Main thread only; outlives its watches.
class XEvents {
 public:
  using Handler = std::function<void(const xcb_generic_event_t& event)>;

  /// Ends when it goes, also from inside its own handler.
  class Watch;

  /// `server` outlives this and is read by nobody else.
  explicit XEvents(XServer& server);

  [[nodiscard]] XServer& server() const { return server_; }
  /// The windows on the screen, of this turn of the event loop.
  [[nodiscard]] const WindowStack& stack() { return stack_.now(); }

  /// Events about `window` of the kinds in `mask` (XCB_EVENT_MASK_...). Several may watch one
  /// window; each gets what any of them asked for, so a handler looks at the type. A window that is
  /// gone sends nothing more.
  [[nodiscard]] std::unique_ptr<Watch> watch(xcb_window_t window, std::uint32_t mask,
                                             Handler handler);
  /// Each time that a property of `window` is written or deleted.
  [[nodiscard]] std::unique_ptr<Watch> watchProperty(xcb_window_t window, std::string_view property,
                                                     std::function<void()> changed);
  /// The event of an extension with this number (its first event plus the kind). Selecting it at
  /// the server is the caller's affair.
  [[nodiscard]] std::unique_ptr<Watch> watchExtension(std::uint8_t responseType, Handler handler);

  /// Hands out what has arrived already. Comes by itself before the program waits.
  void dispatch();

 private:
  struct Entry;
  using Entries = std::vector<std::shared_ptr<Entry>>;

  std::unique_ptr<Watch> add(Entry entry);
  void remove(const std::shared_ptr<Entry>& entry);
  void select(xcb_window_t window);
  void deliver(const xcb_generic_event_t& event);

  XServer& server_;
  OncePerTurn<WindowStack> stack_{[this] { return WindowStack::read(server_); }};
  /// By window; those of extensions under none.
  std::unordered_map<xcb_window_t, Entries> entries_;
  QSocketNotifier notifier_;
  QObject context_;
};

class XEvents::Watch {
 public:
  Watch(XEvents& events, std::shared_ptr<Entry> entry)
      : events_(events), entry_(std::move(entry)) {}
  ~Watch() { events_.remove(entry_); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  XEvents& events_;
  std::shared_ptr<Entry> entry_;
};

}  // namespace linux_desktop
