#pragma once

#include <QDBusMessage>
#include <QString>
#include <QVariant>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/bus/BusSignal.h"

namespace linux_desktop {

/// A channel of xfconf, Xfce's settings service, on the session bus. What waits is bounded as
/// BusPeer is. Main thread only.
class XfconfChannel {
 public:
  struct Change {
    QString property;
    /// None makes the property unset.
    std::optional<QVariant> value;
  };

  explicit XfconfChannel(QString channel) : channel_(std::move(channel)) {}

  /// Asks for the property `base` and all below it. See propertiesIn().
  [[nodiscard]] QDBusMessage question(const QString& base) const;
  /// What is set, by full names; none when this is an error that says nothing of that.
  [[nodiscard]] static std::optional<QVariantMap> propertiesIn(const QDBusMessage& answer);
  /// Makes the change, once it is sent.
  [[nodiscard]] QDBusMessage order(const Change& change) const;

  /// Asks, and waits for the answer. None when the service does not give one.
  [[nodiscard]] std::optional<QVariantMap> read(const QString& base,
                                                const QDeadlineTimer& deadline);

  /// Makes the changes in their order. `undo` is what takes them back: it is sent when one of them
  /// failed, so that nothing has changed then, and the reason comes back.
  [[nodiscard]] std::optional<std::string> write(const std::vector<Change>& changes,
                                                 const std::vector<Change>& undo,
                                                 const QDeadlineTimer& deadline);

  /// `changed` is told of what was set or unset, by us or by anybody. Empty: nothing is watched.
  void setChanged(std::function<void(const Change& change)> changed);

 private:
  [[nodiscard]] std::vector<QDBusMessage> ordersFor(const std::vector<Change>& changes) const;

  QString channel_;
  BusPeer service_{QStringLiteral("org.xfce.Xfconf")};
  std::vector<std::unique_ptr<BusSignal>> signals_;
};

}  // namespace linux_desktop
