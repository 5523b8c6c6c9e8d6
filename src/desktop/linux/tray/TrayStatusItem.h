#pragma once

#include <QDBusConnection>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/linux/tray/DBusMenu.h"
#include "desktop/linux/tray/ItemMenu.h"
#include "desktop/linux/tray/StatusImages.h"
#include "desktop/linux/tray/StatusItemAnchor.h"
#include "desktop/linux/tray/StatusNotifierItem.h"
#include "desktop/linux/windowsystem/PanelButton.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

class TrayStatusBar;

/// One icon, shown by whichever tray there is.
class TrayStatusItem final : public platform::port::StatusItemPeer, public StatusItemAnchor {
 public:
  TrayStatusItem(TrayStatusBar& bar, platform::port::StatusItemClient& client);
  ~TrayStatusItem() override;

  void setImage(const platform::NSImage* image) override;
  void setToolTip(const std::string& text) override;
  void openMenu(const platform::NSMenu& menu) override;

  [[nodiscard]] bool isShown() const override;
  [[nodiscard]] bool isComing() const override;
  [[nodiscard]] Anchor anchor() const override;
  void menuRequested(QWidget& button) override;
  void setActivationObserver(std::function<void(platform::NSEventType)> activated) override {
    observer_ = std::move(activated);
  }

  /// Makes the item known to a watcher that does not know it.
  void registerWith(const QString& watcher);
  /// Is shown by the desktop's own panel and by no tray; null: by trays. `button` outlives this or
  /// the next call.
  void useButton(PanelButton* button);
  /// Takes to the old protocol, or leaves it.
  void useXEmbed(bool use);
  /// On the screen where the tray tells; empty otherwise.
  [[nodiscard]] QRect geometry() const;

 private:
  class XEmbedIcon;

  void activated(QPoint place);
  void menuAsked(QPoint place);
  /// Goes on with `then` once it is known where the click was; `place` is what the tray told.
  void remember(QPoint place, std::function<void()> then);
  void requestMenu(const MenuPlace& place);
  void tellObserver(platform::NSEventType click) const;

  TrayStatusBar& bar_;
  platform::port::StatusItemClient& client_;
  std::function<void(platform::NSEventType)> observer_;
  const StatusImage* image_;
  QString toolTip_;
  MenuOpening opening_;
  OwnMenu ownMenu_;
  std::optional<MenuPlace> menuPlace_;  // of the menu that was asked for, if we are to draw it

  /// The item's own: hosts drop an icon when the connection that offered it ends.
  QDBusConnection connection_;
  std::optional<DBusMenu> busMenu_;
  std::optional<StatusNotifierItem> notifier_;
  std::unique_ptr<XEmbedIcon> xembed_;
  PanelButton* button_ = nullptr;
  QObject context_;
};

}  // namespace linux_desktop
