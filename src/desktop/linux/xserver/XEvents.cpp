#include "desktop/linux/xserver/XEvents.h"

#include <QAbstractEventDispatcher>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// The window that an event was selected on, which all that are about windows have in one place;
/// none for those of extensions.
xcb_window_t windowOf(const xcb_generic_event_t& event) {
  const std::uint8_t type = typeOf(event);
  const bool isAboutAWindow = type >= XCB_CREATE_NOTIFY && type <= XCB_PROPERTY_NOTIFY;
  return isAboutAWindow ? reinterpret_cast<const xcb_property_notify_event_t&>(event).window
                        : xcb_window_t{XCB_NONE};
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
  auto watch = add({window, mask, 0, std::move(handler)});
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
  return add({XCB_NONE, 0, responseType, std::move(handler)});
}

std::unique_ptr<XEvents::Watch> XEvents::add(Entry entry) {
  auto shared = std::make_shared<Entry>(std::move(entry));
  entries_[shared->window].push_back(shared);
  return std::make_unique<Watch>(*this, std::move(shared));
}

void XEvents::remove(const std::shared_ptr<Entry>& entry) {
  entry->ended = true;
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
  const xcb_window_t window = windowOf(event);
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
