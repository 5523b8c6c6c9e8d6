#pragma once

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>

#include "desktop/linux/windowsystem/LegacyTray.h"

namespace linux_desktop {

/// The owner of the tray's selection. Needs Qt's own connection: the tray answers there.
class XTraySelection final : public LegacyTray, private QAbstractNativeEventFilter {
 public:
  XTraySelection();
  ~XTraySelection() override;
  XTraySelection(const XTraySelection&) = delete;
  XTraySelection& operator=(const XTraySelection&) = delete;

  [[nodiscard]] bool isRunning() const override { return owner_ != XCB_NONE; }
  [[nodiscard]] bool isDocked() const override { return docked_; }

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void askForChanges(xcb_window_t root);
  void reportLater(std::function<void()> what);
  void handle(const xcb_xfixes_selection_notify_event_t& change);
  void handle(const xcb_client_message_event_t& message);
  void handle(const xcb_map_notify_event_t& map);
  [[nodiscard]] bool isIcon(xcb_window_t window) const;
  void becomeDocked();

  xcb_connection_t* connection_ = nullptr;  // Qt's
  xcb_atom_t selection_ = XCB_NONE;
  xcb_atom_t xembed_ = XCB_NONE;
  xcb_atom_t xembedInfo_ = XCB_NONE;
  std::uint8_t selectionEvent_ = 0;
  xcb_window_t owner_ = XCB_NONE;
  bool docked_ = false;
  /// What is reported later goes with it.
  QObject context_;
};

}  // namespace linux_desktop
