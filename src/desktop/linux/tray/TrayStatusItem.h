#pragma once

#include <QDBusConnection>
#include <cstddef>
#include <functional>
#include <optional>

#include "desktop/linux/tray/DBusMenu.h"
#include "desktop/linux/tray/ItemMenu.h"
#include "desktop/linux/tray/StatusImages.h"
#include "desktop/linux/tray/StatusItemAnchor.h"
#include "desktop/linux/tray/StatusNotifierItem.h"
#include "desktop/linux/tray/XEmbedIcon.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

class TrayStatusBar;

/// The item's client, with somebody who is told of the clicks first.
class ObservedClient final : public platform::port::StatusItemClient {
 public:
  explicit ObservedClient(platform::port::StatusItemClient& client) : client_(client) {}
  void setObserver(std::function<void(platform::NSEventType)> clicked) {
    clicked_ = std::move(clicked);
  }

  void statusItemClicked(platform::NSEventType type) override;
  void menuItemChosen(std::size_t index) override { client_.menuItemChosen(index); }
  void menuDidClose() override { client_.menuDidClose(); }

 private:
  platform::port::StatusItemClient& client_;
  std::function<void(platform::NSEventType)> clicked_;
};

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
  void menuRequested(QWidget& button) override;
  [[nodiscard]] QString takeToken() override;
  void setActivationObserver(std::function<void(platform::NSEventType)> activated) override {
    client_.setObserver(std::move(activated));
  }

  /// Makes the item known to a watcher that does not know it.
  void registerWith(const QString& watcher);
  /// Takes to the old protocol, or leaves it.
  void useXEmbed(bool use);
  /// On the screen where the tray tells; empty otherwise.
  [[nodiscard]] QRect geometry() const;

 private:
  void activated(const StatusNotifierItem::Click& click);
  void menuAsked(const StatusNotifierItem::Click& click);
  void remember(const StatusNotifierItem::Click& click);
  void requestMenu(const MenuPlace& place);

  TrayStatusBar& bar_;
  ObservedClient client_;
  const StatusImage* image_;
  MenuOpening opening_;
  OwnMenu ownMenu_;
  QString token_;
  std::optional<MenuPlace> menuPlace_;  // of the menu that was asked for, if we are to draw it

  /// The item's own: hosts drop an icon when the connection that offered it ends.
  QDBusConnection connection_;
  std::optional<DBusMenu> busMenu_;
  std::optional<StatusNotifierItem> notifier_;
  std::optional<XEmbedIcon> xembed_;
};

}  // namespace linux_desktop
