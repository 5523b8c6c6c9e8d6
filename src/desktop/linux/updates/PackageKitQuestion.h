#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>

#include "desktop/linux/bus/BusProbe.h"

namespace linux_desktop {

/// What the system's package service knows of newer versions of a package.
struct UpdateAnswer {
  enum class Kind : std::uint8_t {
    Newer,   ///< one waits; `detail` is its version
    None,    ///< it knows of none
    Absent,  ///< there is no such service
    Silent,  ///< it has not answered in time
    Failed,  ///< it could not look; `detail` says why, in its words
  };
  Kind kind = Kind::None;
  QString detail{};
};

/// Asks PackageKit once whether a newer version of a package waits, and starts it where it does not
/// run. Neither it nor a system bus that hangs is ever waited for. Looks at what the system has
/// heard of last; nothing is downloaded. Destroying it ends the question unanswered, and the
/// service's work on it too.
class PackageKitQuestion final : public QObject {
  Q_OBJECT

 public:
  enum class Manner : std::uint8_t {
    ForTheUser,    ///< now
    InBackground,  ///< when the machine has nothing better to do
  };
  using Answered = std::function<void(const UpdateAnswer& answer)>;

  /// Returns at once. `answered` is called once, later, after `patience` at the latest; it may
  /// destroy the question.
  PackageKitQuestion(QString package, Manner manner, std::chrono::milliseconds patience,
                     Answered answered);
  ~PackageKitQuestion() override;

 private:
  Q_SLOT void packageFound(uint kind, const QString& id, const QString& summary);
  Q_SLOT void errorHappened(uint code, const QString& detail);
  Q_SLOT void transactionEnded(uint exit, uint milliseconds);

  void takeBus(bool answers);
  void createTransaction();
  void takeTransaction(const QDBusMessage& answer);
  void findService();
  void lookForUpdates();
  [[nodiscard]] QDBusMessage toTransaction(const QString& method) const;
  void ended();
  void finish(const UpdateAnswer& answer);

  BusProbe probe_;
  QDBusConnection bus_{QString()};  // none yet
  QString package_;
  Manner manner_;
  Answered answered_;
  QString service_;      // the service's own name on the bus
  QString transaction_;  // its path, while it goes on
  UpdateAnswer found_;
  QString error_;
  QTimer patience_;
};

}  // namespace linux_desktop
