#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <map>
#include <memory>

#include "desktop/linux/wayland/WaylandConnection.h"
#include "desktop/linux/windowsystem/DesktopView.h"

namespace linux_desktop {

/// A picture in memory that the compositor reads as well. It is written once, so any number of
/// surfaces may show it at a time. The connection outlives it.
class ShmPicture final : public HeldPicture {
 public:
  /// Opaque; transparency is ignored. Null where there is no memory for it.
  [[nodiscard]] static std::shared_ptr<const ShmPicture> make(wl_shm& shm, const QImage& image);
  /// One pixel that is not seen. Null as above.
  [[nodiscard]] static std::shared_ptr<const ShmPicture> clear(wl_shm& shm);

  [[nodiscard]] QSize size() const { return image_.size(); }
  [[nodiscard]] wl_buffer* buffer() const { return buffer_.get(); }
  /// Pixel by pixel.
  [[nodiscard]] bool isLike(const QImage& image) const { return image_ == image; }

 private:
  [[nodiscard]] static std::shared_ptr<const ShmPicture> hold(wl_shm& shm, const QImage& image,
                                                              wl_shm_format format);
  ShmPicture(QImage image, WaylandProxy<wl_buffer> buffer)
      : image_(std::move(image)), buffer_(std::move(buffer)) {}

  /// Lies in the shared memory.
  QImage image_;
  WaylandProxy<wl_buffer> buffer_;
};

/// The desktop of a Wayland compositor. Nobody may look at what lies below other windows there, so
/// its pictures are what the desktop was told to show, drawn here; where it does not tell, the one
/// before, or black.
/// Where no desktop is known there are no icons to be covered, and no pictures. One that several
/// monitors show is held once. Main thread only.
class ShmPictures final : public DesktopView {
 public:
  /// Both outlive this.
  ShmPictures(WaylandConnection& connection, const MonitorScreens& screens);

  /// See ToldBackdrops::setSource.
  void setBackdrops(BackdropSource* backdrops) { backdrops_.setSource(backdrops); }

  [[nodiscard]] std::shared_ptr<const HeldPicture> picture(const Monitor& monitor) override;
  void follow(std::function<void()> changed) override;

 private:
  [[nodiscard]] QImage drawn(const Monitor& monitor) const;
  [[nodiscard]] std::shared_ptr<const ShmPicture> held(const QImage& image);

  WaylandProxy<wl_shm> shm_;
  ToldBackdrops backdrops_;
  /// By the monitor's name.
  std::map<QString, std::weak_ptr<const ShmPicture>> shown_;
};

}  // namespace linux_desktop
