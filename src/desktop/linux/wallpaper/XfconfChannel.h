#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/linux/bus/BusPeer.h"

namespace linux_desktop {

/// A channel of Xfce's settings service, asked over the bus. Main thread only; bounded as BusPeer
/// is.
class XfconfChannel final : public QObject {
  Q_OBJECT

 public:
  struct Change {
    QString property;
    /// None makes the property unset.
    std::optional<QVariant> value;
  };

  explicit XfconfChannel(QString channel) : channel_(std::move(channel)) {}

  /// The properties below `base` by their full names; unset ones are missing. None when the service
  /// does not answer.
  [[nodiscard]] std::optional<QVariantMap> read(const QString& base,
                                                const QDeadlineTimer& deadline);

  /// Makes the changes in their order. `undo` is what takes them back: it is sent when one of them
  /// failed, so that nothing has changed then, and the reason comes back.
  [[nodiscard]] std::optional<std::string> write(const std::vector<Change>& changes,
                                                 const std::vector<Change>& undo,
                                                 const QDeadlineTimer& deadline);

  /// `changed` is called with the name of a property that was set or unset, by us or by anybody.
  /// Empty: nothing is watched.
  void setChanged(std::function<void(const QString& property)> changed);

 private Q_SLOTS:
  void propertyChanged(const QDBusMessage& signal);

 private:
  [[nodiscard]] std::vector<QDBusMessage> methodsOf(const std::vector<Change>& changes) const;
  void watch(bool wanted);

  QString channel_;
  BusPeer service_{QStringLiteral("org.xfce.Xfconf")};
  std::function<void(const QString&)> changed_;
};

}  // namespace linux_desktop
