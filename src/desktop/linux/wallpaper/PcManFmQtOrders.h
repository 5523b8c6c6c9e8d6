#pragma once

#include <QDBusPendingCallWatcher>
#include <QString>
#include <QTimer>
#include <functional>
#include <optional>
#include <string>

#include "desktop/linux/bus/BusPeer.h"
#include "platform/foundation/Value.h"

namespace linux_desktop {

/// What LXQt's desktop is told to show. It answers an order once it has loaded, scaled and drawn
/// the picture, which takes it as long as it takes: nobody waits here. One order is on its way at a
/// time; of those given meanwhile only the last one follows it, so that a desktop that hung for
/// long goes straight to what is wished by then. Main thread only.
class PcManFmQtOrders {
 public:
  struct Order {
    QString file;
    /// Empty: the mode stays.
    QString mode;
    /// What is restored; none where a new picture is shown.
    std::optional<platform::Dictionary> state;

    bool operator==(const Order&) const = default;
  };
  /// An order was answered; with the reason where it was refused. The next one goes out after this.
  using Answered = std::function<void(const Order&, const std::optional<std::string>& reason)>;

  explicit PcManFmQtOrders(Answered answered);
  /// What was still to go out is sent, so that the desktop ends up as wished without us.
  ~PcManFmQtOrders();
  PcManFmQtOrders(const PcManFmQtOrders&) = delete;
  PcManFmQtOrders& operator=(const PcManFmQtOrders&) = delete;

  void give(Order order);
  /// The one that was given last, until it is answered; else null.
  [[nodiscard]] const Order* last() const;

 private:
  [[nodiscard]] QDBusMessage message(const Order& order) const;
  void send();
  void takeAnswer();

  BusPeer peer_{QStringLiteral("org.pcmanfm.PCManFM")};
  Answered answered_;
  std::optional<Order> onItsWay_;
  std::optional<Order> next_;
  std::optional<QDBusPendingCallWatcher> call_;
  /// Until an order is so late that the user should read of it.
  QTimer late_;
};

}  // namespace linux_desktop
