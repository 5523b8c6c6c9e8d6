#include "desktop/linux/ui/ExposeWatch.h"

#include <QEvent>
#include <utility>

namespace linux_desktop {
namespace {

/// A child of the window that it watches.
class ExposeWatch final : public QObject {
 public:
  ExposeWatch(QWindow& window, std::function<void()> exposed)
      : QObject(&window), window_(window), exposed_(std::move(exposed)) {
    window.installEventFilter(this);
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Expose || !window_.isExposed()) return false;
    if (const auto exposed = std::exchange(exposed_, {})) {
      watched->removeEventFilter(this);
      deleteLater();
      exposed();
    }
    return false;
  }

 private:
  QWindow& window_;
  std::function<void()> exposed_;
};

}  // namespace

void onceExposed(QWindow& window, std::function<void()> exposed) {
  if (window.isExposed()) {
    exposed();
  } else {
    // The window owns it.
    new ExposeWatch(window, std::move(exposed));
  }
}

}  // namespace linux_desktop
