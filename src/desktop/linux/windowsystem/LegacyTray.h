#pragma once

#include <functional>
#include <utility>

namespace linux_desktop {

/// Whether a tray of the old X11 protocol (XEmbed) runs, kept current by the window system's
/// events. Main thread only.
class LegacyTray {
 public:
  struct Observer {
    /// Another one runs, or none.
    std::function<void()> changed;
    /// It has taken an icon of this process in.
    std::function<void()> docked;
  };

  LegacyTray() = default;
  virtual ~LegacyTray() = default;
  LegacyTray(const LegacyTray&) = delete;
  LegacyTray& operator=(const LegacyTray&) = delete;

  [[nodiscard]] virtual bool isRunning() const = 0;
  /// The tray that runs has taken an icon of this process in. One that hangs runs all the same.
  [[nodiscard]] virtual bool isDocked() const = 0;

  /// Told out of the event loop; outlives this, or the next call.
  void setObserver(Observer observer) { observer_ = std::move(observer); }

 protected:
  [[nodiscard]] const Observer& observer() const { return observer_; }

 private:
  Observer observer_;
};

}  // namespace linux_desktop
