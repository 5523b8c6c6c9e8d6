#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "desktop/linux/windowsystem/DesktopView.h"
#include "platform/appkit/NSWindow.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

/// A cover as the peer of its window. It is up while the window is shown and its content is an
/// image view with a captured picture that fits the window's place; content of another kind or size
/// changes nothing. A cover that goes elsewhere is a new surface there, and the old one goes once
/// that is on the screen: so a picture is never seen in another's place. A window's place is its
/// frame's on the screens of the moment, but a cover stays where it is until it is shown another
/// picture or another cover comes there: the monitors may be others for a while before the covers
/// hear of it. Nothing that a user does to a cover is told to anybody.
///
/// `Surface` is what a window system puts on the screen, with the Picture that it shows and the
/// Place where it does; `Surface::meet` says whether two places have a part in common.
template <class Surface>
class CoverPeer : public platform::port::WindowPeer {
 public:
  using Picture = typename Surface::Picture;
  using Place = typename Surface::Place;

  CoverPeer(const CoverPeer&) = delete;
  CoverPeer& operator=(const CoverPeer&) = delete;

  void show(const platform::port::Placement&) final {
    if (!std::exchange(shown_, true)) entered();
    apply();
  }
  void hide() final {
    if (!std::exchange(shown_, false)) return;
    left();
    leaving_.reset();
    surface_.reset();
  }
  void makeKey() final {}
  void update(const std::vector<platform::port::ChangedView>&, bool) final { apply(); }

 protected:
  /// Outlives this. Who derives from this hides it in the destructor.
  explicit CoverPeer(platform::NSWindow& window) : window_(window) {}

  [[nodiscard]] const platform::NSWindow& window() const { return window_; }
  /// Null while it is not up.
  [[nodiscard]] Surface* surface() const { return surface_.get(); }

  /// Where the window is now; none: on no monitor.
  [[nodiscard]] virtual std::optional<Place> place() const = 0;
  [[nodiscard]] virtual bool fits(const Picture& picture, const Place& place) const = 0;
  /// `arrived` is to be called once the surface is on the screen, and may destroy others.
  [[nodiscard]] virtual std::unique_ptr<Surface> make(const Place& place,
                                                      std::shared_ptr<const Picture> picture,
                                                      std::function<void()> arrived) = 0;
  /// The window is shown now; it is not any more.
  virtual void entered() = 0;
  virtual void left() = 0;
  /// A surface of this one has come onto the screen at `place`.
  virtual void arrived(const Place& place) = 0;

  /// Brings what is on the screen to what the window says.
  void apply() {
    const auto where = shown_ ? place() : std::nullopt;
    if (!where) return;
    const auto picture = std::dynamic_pointer_cast<const Picture>(pictureIn(window_));
    if (!picture || !fits(*picture, *where)) return;
    if (!surface_ || surface_->place() != *where) {
      putUp(*where, picture);
    } else if (surface_->picture() != picture) {
      surface_->setPicture(picture);
    }
  }
  /// Puts up another surface, and takes down the one before once that is on the screen.
  void putUp(const Place& place, std::shared_ptr<const Picture> picture) {
    leaving_ = std::move(surface_);
    surface_ = make(place, std::move(picture), [this, place] {
      leaving_.reset();
      arrived(place);
    });
  }
  /// Another cover has come onto the screen at `place`. One that still stands there, where its
  /// window is not any more, goes.
  void giveWayAt(const Place& place) {
    if (!surface_ || !Surface::meet(surface_->place(), place)) return;
    if (surface_->place() != this->place()) surface_.reset();
  }
  /// What the compositor has taken away, or what stood on what is no more.
  void takeDownAt(const Place& place) {
    if (leaving_ && leaving_->place() == place) leaving_.reset();
    if (surface_ && surface_->place() == place) surface_.reset();
  }

 private:
  platform::NSWindow& window_;
  bool shown_ = false;
  std::unique_ptr<Surface> surface_;
  /// The one before, until the present one is on the screen.
  std::unique_ptr<Surface> leaving_;
};

}  // namespace linux_desktop
