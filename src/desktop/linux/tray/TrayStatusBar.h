#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/bus/BusSignal.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/tray/StatusImages.h"
#include "desktop/linux/tray/TrayAnchor.h"
#include "desktop/linux/windowsystem/LegacyTray.h"
#include "desktop/linux/windowsystem/PanelButton.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

/// What is known of the desktop's StatusNotifierWatcher, kept current by the bus's own signals. A
/// watcher that comes late, goes, restarts, stops answering or goes on again is an ordinary event.
class WatcherConnection : public QObject {
  Q_OBJECT

 public:
  enum class State : std::uint8_t {
    Asking,     // no answer yet, and no half second has passed
    NoWatcher,  // nobody owns the name, or there is no bus
    Silent,     // it has owed an answer for half a second
    NoHost,     // it answers, but nobody draws icons
    Ready,      // icons are drawn
  };

  explicit WatcherConnection(QDBusConnection connection);

  [[nodiscard]] State state() const { return state_; }
  /// The watcher's own bus name, which is another after each restart; empty when there is none.
  [[nodiscard]] const QString& owner() const { return owner_; }

 Q_SIGNALS:
  void stateChanged();
  /// There is a watcher that knows nothing of us yet.
  void watcherAppeared();

 private:
  void lookForOwner();
  void takeOwner(const QString& owner);
  void askForHost();
  void setState(State state);

  QDBusConnection connection_;
  QString owner_;
  State state_ = State::Asking;
  std::optional<BusSignal> hostComes_;
  std::optional<BusSignal> hostGoes_;
  OneShot patience_;
};

class TrayStatusItem;

/// The tray, by either of its protocols: StatusNotifierItem where a host draws such items, the old
/// X11 one (XEmbed) where there is only that. Where the desktop has a button on its panel for us,
/// that is the tray. Follows those that come, go and restart. Needs a
/// QApplication, lives on the main thread, and never waits for a tray.
class TrayStatusBar : public QObject, public platform::port::StatusBar {
  Q_OBJECT

 public:
  /// `legacyTray` and `button` are null where there can be none. All outlive this.
  TrayStatusBar(OwnWindows& windows, LegacyTray* legacyTray, PanelButton* button = nullptr);
  ~TrayStatusBar() override;

  [[nodiscard]] std::unique_ptr<platform::port::StatusItemPeer> createStatusItem(
      platform::port::StatusItemClient& client) override;
  [[nodiscard]] bool itemsHaveButtons() const override { return true; }

  /// Whether an icon of ours is on the screen and can be clicked, as far as the trays tell. False
  /// while that is not known yet, and while the tray does not answer.
  [[nodiscard]] bool hasTray() const { return hasTray_; }
  /// Whether there is none yet, but the desktop's panel is going to have a button in a moment; or
  /// it is being found out at which of several panels to look for it.
  [[nodiscard]] bool isComing();
  [[nodiscard]] const TrayAnchor& anchor() const { return anchor_; }

 Q_SIGNALS:
  /// Either of these has become otherwise.
  void trayChanged();

 private:
  friend class TrayStatusItem;
  [[nodiscard]] StatusImages& images() { return images_; }
  [[nodiscard]] bool hasBus() const { return bus_.isConnected(); }
  [[nodiscard]] OwnWindows& windows() { return windows_; }
  /// Where the pointer was, or else where the tray says that it was.
  void rememberClick(std::optional<QPoint> found, QPoint told) {
    found ? anchor_.rememberClick(*found) : anchor_.rememberTold(told);
  }
  void shownBy(const QString& host);
  void forget(const TrayStatusItem& item);

  void registerItems();
  void followTrays();
  void followSoon();
  /// Now or in a moment.
  [[nodiscard]] bool isOnPanel() const {
    return button_ != nullptr && (button_->isThere() || button_->isComing());
  }
  [[nodiscard]] bool wantsXEmbed() const;
  void setTray(bool hasTray, bool isComing);
  void sayThatThereIsNone();
  void lookForPointer();

  QDBusConnection bus_;
  StatusImages images_;
  OwnWindows& windows_;
  TrayAnchor anchor_;
  WatcherConnection watcher_;
  LegacyTray* legacy_;
  PanelButton* button_;
  OneShot settling_;
  OneShot patience_;
  QString host_;  // the bus name of the program that draws our icon
  std::vector<TrayStatusItem*> items_;
  bool hasTray_ = false;
  bool isComing_ = false;
  bool saidNone_ = false;
  bool hasLooked_ = false;
  bool isLooking_ = false;
};

}  // namespace linux_desktop
