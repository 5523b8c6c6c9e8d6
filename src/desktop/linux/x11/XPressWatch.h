#pragma once

#include <memory>
#include <optional>

#include "desktop/linux/windowsystem/OwnWindows.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// Presses anywhere on the desktop but on one window, as raw events of XInput: they come whoever
/// gets the press, without a grab. For as long as it lives; then the server sends nothing.
class XPressWatch final : public OwnWindows::PressWatch {
 public:
  /// Whether that pixel of the root window belongs to a panel.
  using IsOnPanel = std::function<bool(QPoint onRoot)>;

  /// `events` outlives this. Where the server lacks the extension nothing is reported, after one
  /// line on standard error.
  XPressWatch(XEvents& events, xcb_window_t window, IsOnPanel isOnPanel,
              OwnWindows::Pressed pressed);
  ~XPressWatch() override;
  XPressWatch(const XPressWatch&) = delete;
  XPressWatch& operator=(const XPressWatch&) = delete;

  void discardPending() override;

 private:
  void select(std::uint32_t mask);
  void handle(const xcb_generic_event_t& event);
  [[nodiscard]] std::optional<xcb_timestamp_t> timeOfPress(const xcb_generic_event_t& event) const;
  [[nodiscard]] std::optional<QPoint> pointer() const;

  XEvents& events_;
  xcb_window_t window_;
  IsOnPanel isOnPanel_;
  OwnWindows::Pressed pressed_;
  std::optional<std::uint8_t> extension_;
  std::unique_ptr<XEvents::Watch> watch_;
  /// What was pressed up to then was for somebody else.
  std::optional<xcb_timestamp_t> discarded_;
};

}  // namespace linux_desktop
