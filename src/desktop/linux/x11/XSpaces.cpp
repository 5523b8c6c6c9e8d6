#include "desktop/linux/x11/XSpaces.h"

#include <chrono>

namespace linux_desktop {
namespace {

constexpr std::chrono::milliseconds kSettling{150};

}  // namespace

XSpaces::XSpaces(XEvents& events, MonitorPictures& pictures)
    : events_(events), pictures_(pictures) {
  settling_.setSingleShot(true);
  settling_.setInterval(kSettling);
  QObject::connect(&settling_, &QTimer::timeout, &settling_, [this] {
    if (client_ != nullptr) client_->activeSpaceDidChange();
  });
}

XSpaces::~XSpaces() {
  XSpaces::setClient(nullptr);
}

void XSpaces::setClient(platform::port::SpacesClient* client) {
  client_ = client;
  watch_.reset();
  settling_.stop();
  if (client == nullptr) {
    pictures_.follow({});
    return;
  }
  pictures_.follow([this] { settling_.start(); });
  XServer& server = events_.server();
  const xcb_atom_t space = server.atom("_NET_CURRENT_DESKTOP");
  watch_ = events_.watch(server.root(), XCB_EVENT_MASK_PROPERTY_CHANGE,
                         [this, space](const xcb_generic_event_t& event) {
                           if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return;
                           const auto& change =
                               reinterpret_cast<const xcb_property_notify_event_t&>(event);
                           if (change.atom == space) settling_.start();
                         });
}

}  // namespace linux_desktop
