#pragma once

#include <QString>
#include <optional>

namespace linux_desktop {

/// Whether a setting was absent before it was switched on here, and is to be so again. While it is
/// to be, a file says so, `$XDG_STATE_HOME/calmdeck/SETTING.was-unset`: the process that switches
/// it off may be another one than had switched it on.
class FormerAbsence {
 public:
  /// `setting` names it among all that are switched here, as part of a file's name.
  explicit FormerAbsence(const QString& setting);

  /// Of a switch to `on`, told before it is made and with what is so until then: whether it is to
  /// leave the setting absent.
  [[nodiscard]] bool comesBack(bool on, std::optional<bool> wasOn, bool wasSet);

 private:
  void note(bool wasAbsent);

  QString mark_;
  bool wasAbsent_;
};

}  // namespace linux_desktop
