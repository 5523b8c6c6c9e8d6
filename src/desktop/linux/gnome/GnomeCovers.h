#pragma once

#include <QObject>
#include <memory>

#include "desktop/linux/gnome/GnomeShell.h"
#include "desktop/linux/windowsystem/CoverFactory.h"

namespace linux_desktop {

/// Covers that the shell makes, of its own background: no picture of ours is needed, and none has
/// to be taken. It covers every monitor, also one that comes later, for as long as any cover is
/// shown here, so that it does not matter where each stands. One that is made while the extension
/// is off is another's. Main thread only.
class GnomeCovers final : public CoverFactory {
 public:
  /// `shell` outlives this.
  explicit GnomeCovers(GnomeShell& shell);
  GnomeCovers(const GnomeCovers&) = delete;
  GnomeCovers& operator=(const GnomeCovers&) = delete;

  /// Who makes covers while the extension is off; null: nobody. Outlives this.
  void setOthers(CoverFactory* others) { others_ = others; }

  [[nodiscard]] bool canCover() override {
    return !shell_.isOff() || (others_ != nullptr && others_->canCover());
  }
  [[nodiscard]] std::unique_ptr<platform::port::WindowPeer> createCover(
      platform::NSWindow& window, platform::port::WindowClient& client) override;

 private:
  friend class GnomeCover;

  void entered();
  void left();

  GnomeShell& shell_;
  CoverFactory* others_ = nullptr;
  int shown_ = 0;
  QObject context_;
};

}  // namespace linux_desktop
