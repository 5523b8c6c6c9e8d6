#pragma once

#include <chrono>
#include <memory>

#include "desktop/linux/notifications/DaemonNotifier.h"
#include "desktop/linux/updates/PackageKitQuestion.h"
#include "platform/port/Program.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

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
