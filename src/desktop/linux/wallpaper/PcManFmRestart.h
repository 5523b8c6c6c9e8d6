#pragma once

#include <QByteArrayList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/files/Processes.h"
#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/loop/OneShot.h"

namespace linux_desktop {

/// The profile under which a file manager of the pcmanfm family keeps its settings: the one that
/// its command line names, else "default".
[[nodiscard]] QString profileIn(const QByteArrayList& commandLine);

/// Hands options over as `pcmanfm <options>` would, without waiting: `read` is called when they
/// were read, which is when they are carried out, or when the program has ended. Not once `context`
/// is gone. The reason where the program cannot be reached; nothing is carried out then.
[[nodiscard]] std::optional<std::string> tellPcManFm(const QStringList& options, QObject& context,
                                                     std::function<void()> read);

/// Has pcmanfm draw its desktop anew, which is when it reads what each monitor is to show. It ends
/// with its last window, so it is started again as it was started first. Belongs to the
/// application, since while there is no desktop window another adapter may be chosen. Main thread.
class PcManFmRestart final : public QObject {
 public:
  /// The application's one.
  [[nodiscard]] static PcManFmRestart& instance();
  /// Whether the desktop window is away because of us.
  [[nodiscard]] bool isUnderWay() const { return phase_ != Phase::Idle; }

  /// How the process was started that owns the desktop window, or owned it last.
  [[nodiscard]] const QByteArrayList& commandLine() const { return commandLine_; }
  /// The desktop window is that of this process.
  void found(qint64 pid);

  /// Those who ask before the program is back share one restart, which begins when the program
  /// reads what it is told. The reason when it cannot be told.
  [[nodiscard]] std::optional<std::string> begin();
  /// What a settings file is to hold when the program starts, should it save others as it ends.
  void keep(const QString& file, const std::optional<QByteArray>& text) { texts_[file] = text; }

 private:
  enum class Phase { Idle, Ending, Starting, Drawing };

  explicit PcManFmRestart(QObject* parent);
  void takeDesktopOff();
  void ended();
  void started();
  void giveUp();
  void rest();

  Phase phase_ = Phase::Idle;
  bool again_ = false;
  std::map<QString, std::optional<QByteArray>> texts_;
  qint64 pid_ = 0;
  QByteArrayList commandLine_;
  std::optional<ProcessEnd> end_;
  std::unique_ptr<FileWatch> socket_;
  OneShot limit_;
};

}  // namespace linux_desktop
