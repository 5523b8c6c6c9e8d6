#pragma once

#include <QDBusConnection>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/linux/tray/DBusMenu.h"
#include "desktop/linux/tray/MenuOpening.h"
#include "desktop/linux/tray/OwnMenu.h"
#include "desktop/linux/tray/StatusImages.h"
#include "desktop/linux/tray/StatusItemAnchor.h"
#include "desktop/linux/tray/StatusNotifierItem.h"
#include "desktop/linux/tray/XEmbedIcon.h"
#include "platform/port/StatusBar.h"

namespace linux_desktop {

class TrayStatusBar;

/// One icon, shown by whichever tray there is.
class TrayStatusItem final : public platform::port::StatusItemPeer, public StatusItemAnchor {
 public:
  TrayStatusItem(TrayStatusBar& bar, platform::port::StatusItemClient& client);
  ~TrayStatusItem() override;
  TrayStatusItem(const TrayStatusItem&) = delete;
  TrayStatusItem& operator=(const TrayStatusItem&) = delete;

  void setImage(const platform::NSImage* image) override;
  void openMenu(const platform::NSMenu& menu) override;

  [[nodiscard]] bool isShown() const override;
  [[nodiscard]] Anchor anchor() const override;
  void menuRequested(QPoint at) override;
  void setActivationObserver(std::function<void()> activated) override {
    activationObserver_ = std::move(activated);
  }

  /// Makes the item known to a watcher that does not know it.
  void registerWith(const QString& watcher);
  /// Takes to the old protocol, or leaves it.
  void useXEmbed(bool use);
  /// On the screen where the tray tells; empty otherwise.
  [[nodiscard]] QRect geometry() const;

 private:
  void activated();
  void menuAsked();
  void tellObserver() const;

  TrayStatusBar& bar_;
  platform::port::StatusItemClient& client_;
  const StatusImage* image_;
  MenuOpening opening_;
  OwnMenu ownMenu_;
  bool drawsMenu_ = false;           // the menu in progress is drawn by us
  std::optional<QPoint> menuPlace_;  // where a window asked for it
  std::function<void()> activationObserver_;

  /// The item's own: hosts drop an icon when the connection that offered it ends.
  QDBusConnection connection_;
  std::optional<DBusMenu> busMenu_;
  std::optional<StatusNotifierItem> notifier_;
  std::optional<XEmbedIcon> xembed_;
};

}  // namespace linux_desktop
