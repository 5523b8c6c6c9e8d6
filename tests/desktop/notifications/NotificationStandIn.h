#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariantMap>
#include <set>
#include <vector>

/// What shows notifications, as a list in memory: under its name on the bus while it lives. Answers
/// from the event loop.
class NotificationStandIn final : public QDBusVirtualObject {
 public:
  struct Notification {
    QString application;
    uint replaces = 0;
    QString icon;
    QString summary;
    QString body;
    QVariantMap hints;
    uint id = 0;
  };

  /// `name` is that of a connection in Qt's own list.
  NotificationStandIn(const QString& address, QString name);
  ~NotificationStandIn() override;
  NotificationStandIn(const NotificationStandIn&) = delete;
  NotificationStandIn& operator=(const NotificationStandIn&) = delete;

  /// Every call of Notify, in order.
  std::vector<Notification> calls;
  /// The ids on the screen.
  std::set<uint> shown;
  /// While set, Notify is not answered; release() does it later.
  bool hangs = false;
  bool refuses = false;

  void release();
  void close(uint id);

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;

 private:
  void notify(const QDBusMessage& message);

  QString name_;
  QDBusConnection bus_;
  std::vector<QDBusMessage> owed_;
  uint lastId_ = 0;
};
