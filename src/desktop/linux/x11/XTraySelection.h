#pragma once

#include <xcb/xfixes.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>

#include "desktop/linux/windowsystem/LegacyTray.h"
#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// The owner of the tray's selection. Needs Qt's own connection: the tray answers there.
class XTraySelection final : public LegacyTray, private QAbstractNativeEventFilter {
 public:
  /// `server` outlives this.
  explicit XTraySelection(XServer& server);
  ~XTraySelection() override;
  XTraySelection(const XTraySelection&) = delete;
  XTraySelection& operator=(const XTraySelection&) = delete;

  [[nodiscard]] bool isRunning() const override { return owner_ != XCB_NONE; }
  [[nodiscard]] bool isDocked() const override { return docked_; }

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void askForChanges();
  void reportLater(std::function<void()> what);
  void handle(const xcb_xfixes_selection_notify_event_t& change);
  void handle(const xcb_client_message_event_t& message);
  void handle(const xcb_map_notify_event_t& map);
  [[nodiscard]] bool isIcon(xcb_window_t window) const;
  void becomeDocked();

  XServer& server_;
  xcb_connection_t* connection_;  // Qt's
  xcb_atom_t selection_;
  xcb_atom_t xembed_;
  std::uint8_t selectionEvent_ = 0;
  xcb_window_t owner_ = XCB_NONE;
  bool docked_ = false;
  /// What is reported later goes with it.
  QObject context_;
};

}  // namespace linux_desktop
