#pragma once

#include <QIcon>
#include <QString>
#include <functional>
#include <utility>

namespace linux_desktop {

/// A button on the desktop's own panel, where a session has one for us. It takes the place of a
/// tray: it shows one status item, tells that of clicks as a tray does, and draws its menu. Main
/// thread only.
class PanelButton {
 public:
  PanelButton() = default;
  virtual ~PanelButton() = default;
  PanelButton(const PanelButton&) = delete;
  PanelButton& operator=(const PanelButton&) = delete;

  [[nodiscard]] virtual bool isThere() const = 0;
  /// Whether there is none yet, but is going to be in a moment.
  [[nodiscard]] virtual bool isComing() const = 0;
  /// Shows the StatusNotifierItem that `service` offers on the session bus, with this icon instead
  /// of its own; again: with another one. Stays until this is destroyed.
  virtual void show(const QString& service, const QIcon& icon) = 0;

  /// `changed` is told out of the event loop when either has become otherwise; outlives this, or
  /// the next call.
  void setObserver(std::function<void()> changed) { changed_ = std::move(changed); }

 protected:
  void tellChanged() const {
    if (changed_) changed_();
  }

 private:
  std::function<void()> changed_;
};

}  // namespace linux_desktop
