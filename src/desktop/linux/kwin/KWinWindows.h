#pragma once

#include <QDBusMessage>
#include <QJsonObject>
#include <QString>
#include <QVariantList>
#include <functional>
#include <memory>
#include <string>

#include "desktop/linux/bus/BusObject.h"
#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/windowsystem/OtherApplications.h"

namespace linux_desktop {

/// Hides by a script that KWin runs, since it tells ordinary programs nothing of windows.
class KWinWindows final : public WindowHider {
 public:
  /// Null where no KWin answers on the session bus, within half a second, or takes no scripts.
  [[nodiscard]] static std::unique_ptr<KWinWindows> open();

  [[nodiscard]] bool isHiding() override { return isHiding_; }
  void hide(Done done) override;
  void show(Done done) override { run(QStringLiteral("show"), std::move(done)); }

 private:
  KWinWindows();
  void run(const QString& what, Done done);
  [[nodiscard]] bool writeScript(const QString& what);
  void order(const QString& method, const QVariantList& arguments,
             std::function<void(const QDBusMessage& answer)> then);
  void answered(const QJsonObject& answer);
  void fail(const std::string& reason);
  void finish();
  void unload();

  BusPeer kwin_;
  BusObject ear_;
  /// Of the run under way, so that the answer of one that was given up does not count.
  int number_ = 0;
  bool isHiding_ = false;
  /// What the script has to know of its runs before.
  QJsonObject known_;
  Done done_;
  OneShot patience_;
  QObject context_;
};

}  // namespace linux_desktop
