#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

namespace linux_desktop {

/// Listens to one signal on a bus for as long as it lives. Main thread only.
class BusSignal final : public QObject {
  Q_OBJECT

 public:
  struct Source {
    /// A program's own name on the bus; for any other Qt would wait for the bus to say whose it is.
    /// Empty: whoever sends it.
    QString service;
    QString path;
    QString interface;
    QString name;
    /// The texts with which the signal's values begin; empty: any.
    QStringList begins = {};
  };

  /// `heard` may destroy this.
  BusSignal(QDBusConnection bus, const Source& source,
            std::function<void(const QDBusMessage& signal)> heard);

 private:
  Q_SLOT void tell(const QDBusMessage& signal);

  std::function<void(const QDBusMessage&)> heard_;
};

}  // namespace linux_desktop
