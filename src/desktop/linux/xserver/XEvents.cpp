#include "desktop/linux/xserver/XEvents.h"

#include <QAbstractEventDispatcher>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// Where in an event of each core type the window stands that it was selected on.
struct WindowField {
  std::uint8_t type;
  std::size_t offset;
};
constexpr std::array kWindowFields{
    WindowField{XCB_BUTTON_PRESS, offsetof(xcb_button_press_event_t, event)},
    WindowField{XCB_BUTTON_RELEASE, offsetof(xcb_button_release_event_t, event)},
    WindowField{XCB_KEY_PRESS, offsetof(xcb_key_press_event_t, event)},
    WindowField{XCB_KEY_RELEASE, offsetof(xcb_key_release_event_t, event)},
    WindowField{XCB_FOCUS_IN, offsetof(xcb_focus_in_event_t, event)},
    WindowField{XCB_FOCUS_OUT, offsetof(xcb_focus_out_event_t, event)},
    WindowField{XCB_EXPOSE, offsetof(xcb_expose_event_t, window)},
    WindowField{XCB_VISIBILITY_NOTIFY, offsetof(xcb_visibility_notify_event_t, window)},
    WindowField{XCB_CREATE_NOTIFY, offsetof(xcb_create_notify_event_t, parent)},
    WindowField{XCB_DESTROY_NOTIFY, offsetof(xcb_destroy_notify_event_t, event)},
    WindowField{XCB_UNMAP_NOTIFY, offsetof(xcb_unmap_notify_event_t, event)},
    WindowField{XCB_MAP_NOTIFY, offsetof(xcb_map_notify_event_t, event)},
    WindowField{XCB_REPARENT_NOTIFY, offsetof(xcb_reparent_notify_event_t, event)},
    WindowField{XCB_CONFIGURE_NOTIFY, offsetof(xcb_configure_notify_event_t, event)},
    WindowField{XCB_CIRCULATE_NOTIFY, offsetof(xcb_circulate_notify_event_t, event)},
    WindowField{XCB_PROPERTY_NOTIFY, offsetof(xcb_property_notify_event_t, window)},
    WindowField{XCB_CLIENT_MESSAGE, offsetof(xcb_client_message_event_t, window)},
};

xcb_window_t windowOf(const xcb_generic_event_t& event, std::uint8_t type) {
  const auto* field = std::ranges::find(kWindowFields, type, &WindowField::type);
  if (field == kWindowFields.end()) return XCB_NONE;
  xcb_window_t window = XCB_NONE;
  std::memcpy(&window, reinterpret_cast<const std::byte*>(&event) + field->offset, sizeof window);
  return window;
}

}  // namespace

struct XEvents::Entry {
  /// None: the event of an extension, of that type.
  xcb_window_t window;
  std::uint32_t mask;
  std::uint8_t type;
  Handler handler;
  bool ended = false;
};

class XEvents::Subscription final : public Watch {
 public:
  Subscription(XEvents& events, std::shared_ptr<Entry> entry)
      : events_(events), entry_(std::move(entry)) {}
  ~Subscription() override {
    entry_->ended = true;
    events_.remove(entry_);
  }
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;

 private:
  XEvents& events_;
  std::shared_ptr<Entry> entry_;
};

XEvents::XEvents(XServer& server)
    : server_(server), notifier_(xcb_get_file_descriptor(server.get()), QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &context_, [this] { dispatch(); });
  // An answer that somebody waited for may have brought events along, of which the socket says
  // nothing any more.
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                   &context_, [this] { dispatch(); });
}

std::unique_ptr<XEvents::Watch> XEvents::watch(xcb_window_t window, std::uint32_t mask,
                                               Handler handler) {
  auto watch = add(std::make_shared<Entry>(Entry{window, mask, 0, std::move(handler)}));
  select(window);
  return watch;
}

std::unique_ptr<XEvents::Watch> XEvents::watchProperty(xcb_window_t window,
                                                       std::string_view property,
                                                       std::function<void()> changed) {
  const xcb_atom_t atom = server_.atom(property);
  return watch(window, XCB_EVENT_MASK_PROPERTY_CHANGE,
               [atom, changed = std::move(changed)](const xcb_generic_event_t& event) {
                 if (typeOf(event) != XCB_PROPERTY_NOTIFY) return;
                 const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
                 if (change.atom == atom) changed();
               });
}

std::unique_ptr<XEvents::Watch> XEvents::watchExtension(std::uint8_t responseType,
                                                        Handler handler) {
  return add(std::make_shared<Entry>(Entry{XCB_NONE, 0, responseType, std::move(handler)}));
}

std::unique_ptr<XEvents::Watch> XEvents::add(std::shared_ptr<Entry> entry) {
  entries_[entry->window].push_back(entry);
  return std::make_unique<Subscription>(*this, std::move(entry));
}

void XEvents::remove(const std::shared_ptr<Entry>& entry) {
  const auto found = entries_.find(entry->window);
  std::erase(found->second, entry);
  if (entry->window != XCB_NONE) select(entry->window);
  if (found->second.empty()) entries_.erase(found);
}

void XEvents::select(xcb_window_t window) {
  std::uint32_t mask = 0;
  for (const auto& entry : entries_[window]) mask |= entry->mask;
  // Goes out before the program waits, with all else.
  xcb_change_window_attributes(server_.get(), window, XCB_CW_EVENT_MASK, &mask);
}

void XEvents::dispatch() {
  while (const auto event = server_.nextEvent()) deliver(*event);
  xcb_flush(server_.get());
  if (xcb_connection_has_error(server_.get()) != 0) notifier_.setEnabled(false);
}

void XEvents::deliver(const xcb_generic_event_t& event) {
  const std::uint8_t type = typeOf(event);
  if (type == 0) {
    // A window that is gone by now is the usual case and no news.
    qCDebug(lcX11) << "error" << reinterpret_cast<const xcb_generic_error_t&>(event).error_code;
    return;
  }
  const xcb_window_t window = windowOf(event, type);
  const auto found = entries_.find(window);
  if (found == entries_.end()) return;
  // Handlers come and go while others run.
  const Entries entries = found->second;
  for (const auto& entry : entries) {
    if (entry->ended) continue;
    if (window == XCB_NONE && entry->type != type) continue;
    entry->handler(event);
  }
}

}  // namespace linux_desktop
