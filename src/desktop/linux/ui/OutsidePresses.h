#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// Sees every press of a button or a finger on the whole desktop, whoever gets it, without a grab.
/// For as long as it lives; then the server sends nothing. Turning a wheel is no press.
class OutsidePresses {
 public:
  /// `onRoot` is where the pointer is now, in pixels: a raw press does not say where it was.
  /// `time` is the server's; the event that somebody got for the press has the same.
  using Pressed = std::function<void(QPoint onRoot, xcb_timestamp_t time)>;

  /// `server` is for this object alone: what it receives is read here. `pressed` is called out of
  /// the event loop; it must not destroy this object.
  OutsidePresses(std::unique_ptr<XServer> server, Pressed pressed);
  OutsidePresses(const OutsidePresses&) = delete;
  OutsidePresses& operator=(const OutsidePresses&) = delete;

  /// Forgets the presses that have happened but have not been reported.
  void discardPending();

 private:
  void select();
  void read();
  [[nodiscard]] std::optional<xcb_timestamp_t> timeOfPress(const xcb_generic_event_t& event) const;
  [[nodiscard]] std::optional<QPoint> pointer() const;

  std::unique_ptr<XServer> server_;
  Pressed pressed_;
  std::uint8_t extension_ = 0;
  QSocketNotifier notifier_;
};

}  // namespace linux_desktop
