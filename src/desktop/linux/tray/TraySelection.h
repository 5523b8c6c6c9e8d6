#pragma once

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>

namespace linux_desktop {

/// Whether an X11 system tray of the old protocol (XEmbed) runs, kept current by the X server's
/// events about the owner of its selection. Never runs where the window system is another.
class TraySelection : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  TraySelection();
  ~TraySelection() override;
  TraySelection(const TraySelection&) = delete;
  TraySelection& operator=(const TraySelection&) = delete;

  [[nodiscard]] bool isOwned() const { return owner_ != XCB_NONE; }
  /// The tray has taken an icon of this process in. One that hangs owns the selection all the same.
  [[nodiscard]] bool isDocked() const { return docked_; }

 Q_SIGNALS:
  /// Another owner, or none.
  void changed();
  void docked();

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void askForChanges(xcb_window_t root);
  void handle(const xcb_xfixes_selection_notify_event_t& change);
  void handle(const xcb_client_message_event_t& message);

  xcb_connection_t* connection_ = nullptr;  // Qt's
  xcb_atom_t selection_ = XCB_NONE;
  xcb_atom_t xembed_ = XCB_NONE;
  std::uint8_t selectionEvent_ = 0;
  xcb_window_t owner_ = XCB_NONE;
  bool docked_ = false;
};

}  // namespace linux_desktop
