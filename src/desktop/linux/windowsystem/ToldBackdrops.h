#pragma once

#include <QImage>
#include <QTimer>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "desktop/linux/wallpaper/Backdrop.h"
#include "desktop/linux/windowsystem/MonitorScreens.h"

namespace linux_desktop {

/// What the desktop has been told to show on one monitor. It is asked about and drawn once at most.
class ToldBackdrop {
 public:
  /// `source` may be null: nobody knows. Both outlive this.
  ToldBackdrop(BackdropSource* source, const Monitor& monitor)
      : source_(source), monitor_(monitor) {}

  /// See BackdropSource::mayHaveIcons.
  [[nodiscard]] bool mayHaveIcons() { return source_ != nullptr && source_->mayHaveIcons(); }
  /// Whether anybody knows. Draws nothing.
  [[nodiscard]] bool isKnown();
  /// Of the monitor's size. Null where nobody knows, or it takes long to be drawn.
  [[nodiscard]] const QImage& image();
  /// Of the image that was asked for.
  [[nodiscard]] bool takesLong() const { return takesLong_; }

 private:
  BackdropSource* source_;
  const Monitor& monitor_;
  bool asked_ = false;
  std::optional<Backdrop> backdrop_;
  bool drawn_ = false;
  bool takesLong_ = false;
  QImage image_;
};

/// What the desktop has been told to show, and which monitors were told of another picture. Main
/// thread only.
class ToldBackdrops {
 public:
  /// `screens` outlives this.
  explicit ToldBackdrops(const MonitorScreens& screens);
  ~ToldBackdrops();
  ToldBackdrops(const ToldBackdrops&) = delete;
  ToldBackdrops& operator=(const ToldBackdrops&) = delete;

  /// Null, as at first: nobody knows. Outlives its being set.
  void setSource(BackdropSource* source);
  /// `changed` gets the monitors that were told of another picture since the last time; there may
  /// be none. Empty: nothing is watched.
  void follow(std::function<void(const std::vector<Monitor>& others)> changed);
  /// Another program may draw the desktop now, of which the source need not know yet.
  void lookAgain();
  [[nodiscard]] ToldBackdrop on(const Monitor& monitor) const { return {source_, monitor}; }

 private:
  void watch();
  void learn();
  void told();

  const MonitorScreens& screens_;
  BackdropSource* source_ = nullptr;
  std::function<void(const std::vector<Monitor>& others)> changed_;
  /// Asking takes a moment, which the start of the program need not wait for.
  QTimer learning_;
  /// By the monitor's name.
  std::map<QString, std::optional<Backdrop>> last_;
};

}  // namespace linux_desktop
