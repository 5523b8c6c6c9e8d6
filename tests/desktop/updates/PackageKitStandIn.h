#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <optional>

/// As much of PackageKit as looks for updates, under its name on a bus while it lives. Answers from
/// the event loop.
class PackageKitStandIn final : public QDBusVirtualObject {
 public:
  /// At which question it falls silent for ever.
  enum class Silence { Never, AtCreateTransaction, AtGetUpdates };

  /// `name` is that of a connection in Qt's own list.
  PackageKitStandIn(const QString& address, QString name);
  ~PackageKitStandIn() override;
  PackageKitStandIn(const PackageKitStandIn&) = delete;
  PackageKitStandIn& operator=(const PackageKitStandIn&) = delete;

  /// Every call, in order, with its arguments.
  QStringList calls;

  /// The updates that wait: "name;version;architecture;origin".
  QStringList packages;
  uint kind = 5;  // PackageKit's PK_INFO_ENUM_NORMAL
  Silence silence = Silence::Never;
  /// What goes wrong while it looks, in its words.
  std::optional<QString> trouble;
  /// GetUpdates itself is an error.
  bool refuses = false;

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;

 private:
  void createTransaction(const QDBusMessage& message);
  void getUpdates(const QDBusMessage& message);
  void tell(const QDBusMessage& transaction, const QString& signal, const QVariantList& arguments);

  QString name_;
  QDBusConnection bus_;
  int transactions_ = 0;
};
