#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <functional>
#include <memory>

namespace linux_desktop {

/// A copy of the picture in `path` that fits into `within`, upright, never enlarged. Null for what
/// is no picture file, is broken, or is too large to be read for a mere look. May take a second.
[[nodiscard]] QImage readSmallPicture(const QString& path, QSize within);

/// Reads small copies of pictures beside the main thread, for which alone its calls are.
class PictureLoader {
 public:
  /// Called from the event loop, with a null image as readSmallPicture() has it.
  using Loaded = std::function<void(const QImage& picture)>;

  /// What was asked for before and has not come yet does not come any more.
  void load(const QString& path, QSize within, Loaded loaded);
  void cancel() { request_.reset(); }

 private:
  /// Gone once nobody waits any more. The main thread's alone.
  std::shared_ptr<const Loaded> request_;
};

}  // namespace linux_desktop
