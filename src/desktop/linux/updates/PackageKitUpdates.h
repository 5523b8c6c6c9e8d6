#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>

#include "desktop/linux/bus/BusProbe.h"
#include "desktop/linux/bus/BusSignal.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/notifications/DaemonNotifier.h"
#include "platform/port/Program.h"
#include "platform/port/Windows.h"

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
  void takeBus(bool answers);
  void createTransaction();
  void takeTransaction(const QDBusMessage& answer);
  void findService();
  void follow(const char* signal, std::function<void(const QVariantList& values)> heard);
  void lookForUpdates();
  void packageFound(uint kind, const QString& id);
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
  std::list<BusSignal> signals_;
  OneShot patience_;
};

/// How long an answer is waited for.
struct UpdatePatience {
  std::chrono::milliseconds user = std::chrono::seconds(10);
  std::chrono::milliseconds background = std::chrono::minutes(2);
};

/// Newer versions come with the system's updates: PackageKit is asked whether one waits, and the
/// user is told where to get it. Nothing is ever downloaded or installed from here. Main thread
/// only; needs the QApplication.
class PackageKitUpdates final : public platform::port::UpdateService {
 public:
  /// `windows` show the answers to the user, `notifier` what comes unasked; both outlive this.
  PackageKitUpdates(platform::port::Windows& windows, Notifier& notifier,
                    UpdatePatience patience = {})
      : windows_(windows), notifier_(notifier), patience_(patience) {}

  /// A notification when a newer version waits; else, and if anything fails, nothing.
  void checkInBackground() override;
  /// An alert in any case. Asked again before that is answered: nothing more.
  void checkForUpdates() override;

 private:
  void question(PackageKitQuestion::Manner manner, std::chrono::milliseconds patience,
                PackageKitQuestion::Answered answered);
  void notify(const UpdateAnswer& answer);
  void show(const UpdateAnswer& answer);

  platform::port::Windows& windows_;
  Notifier& notifier_;
  UpdatePatience patience_;
  std::unique_ptr<PackageKitQuestion> question_;
  std::unique_ptr<platform::port::Windows::ModalPeer> alert_;
  bool userWaits_ = false;
};

}  // namespace linux_desktop
