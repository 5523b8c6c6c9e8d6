#pragma once

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDeadlineTimer>
#include <QVariantList>
#include <optional>
#include <span>
#include <vector>

#include "desktop/linux/bus/BusCall.h"

namespace linux_desktop {

/// A service on the session bus that is asked and waited for, but never for long: an operation has
/// half a second for all that it asks, and once that ran out the next ones fail at once until the
/// service answers again or ends. No service is started by being asked. Main thread only.
class BusPeer {
 public:
  explicit BusPeer(QString service) : service_(std::move(service)) {}

  /// The time of one operation, from now on.
  [[nodiscard]] static QDeadlineTimer deadline() { return QDeadlineTimer(longestOperation_); }
  /// Another limit for this process, in milliseconds: on a machine so busy that a service which is
  /// well looks hung.
  static void limitOperationsTo(int longest) { longestOperation_ = longest; }

  [[nodiscard]] QDBusMessage method(const QString& path, const QString& interface,
                                    const QString& name, const QVariantList& arguments = {}) const;

  /// The answer, or an error.
  [[nodiscard]] QDBusMessage call(const QDBusMessage& method,
                                  const QDeadlineTimer& deadline = BusPeer::deadline());
  /// All of them on their way before the first is waited for; the answers in the same order.
  [[nodiscard]] std::vector<QDBusMessage> callAll(
      std::span<const QDBusMessage> methods, const QDeadlineTimer& deadline = BusPeer::deadline());
  /// The process that owns the service, as the bus tells; 0 where there is none.
  [[nodiscard]] qint64 process(const QDeadlineTimer& deadline = BusPeer::deadline()) const;
  /// Sends them, in this order behind what went before, and looks at no answer.
  static void send(std::span<const QDBusMessage> methods);

 private:
  [[nodiscard]] bool isHung();

  static inline int longestOperation_ = kBusPatience.count();

  QString service_;
  /// Out since the service let a call run into its limit.
  std::optional<QDBusPendingCall> sign_;
};

}  // namespace linux_desktop
