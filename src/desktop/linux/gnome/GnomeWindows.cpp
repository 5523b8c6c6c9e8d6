#include "desktop/linux/gnome/GnomeWindows.h"

#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kInterface = QStringLiteral("Windows");

}  // namespace

GnomeWindows::GnomeWindows(GnomeShell& shell) : shell_(shell) {
  // Said before it is ready, and whenever it becomes otherwise.
  hiding_ = GnomeShell::listen(
      kInterface, QStringLiteral("Hiding"),
      [this](const QVariantList& values) { isHiding_ = values.value(0).toBool(); });
}

void GnomeWindows::hide(Done done) {
  run(QStringLiteral("Hide"), std::move(done));
}

void GnomeWindows::show(Done done) {
  run(QStringLiteral("Show"), std::move(done));
}

void GnomeWindows::run(const QString& method, Done done) {
  const bool isReady = shell_.isReady();
  shell_.ask(kInterface, method, {}, &context_,
             [isReady, done = std::move(done)](const QDBusMessage& answer) {
               if (isError(answer)) {
                 qCWarning(lcGnome, "GNOME Shell does not hide or show windows: %s",
                           isReady ? reasonOf(answer).c_str() : "our extension is turned off");
               } else if (const uint staying = answer.arguments().value(0).toUInt(); staying > 0) {
                 qCWarning(lcGnome, "%s", cannotBeMinimised(staying).c_str());
               }
               done();
             });
}

}  // namespace linux_desktop
