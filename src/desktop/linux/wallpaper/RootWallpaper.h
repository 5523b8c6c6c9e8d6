#pragma once

#include <QHash>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/linux/wallpaper/RootPixmap.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

/// A window manager without a desktop: the picture is the root window's background, one for all
/// monitors, left there by a program that has ended. No file names it, so its content is what is
/// remembered, at the server.
class RootWallpaper final : public WallpaperAdapter {
 public:
  explicit RootWallpaper(WallpaperSurroundings surroundings);
  ~RootWallpaper() override;

  /// Whether nothing covers the root window. To be asked last.
  [[nodiscard]] static bool runs(const WallpaperSurroundings& surroundings);

  /// Known only where the picture is ours.
  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<platform::Dictionary> state(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& state) override;
  void setChanged(std::function<void()> changed) override;

 private:
  struct Background;
  struct Saved;

  [[nodiscard]] XServer& server() const { return surroundings_.x11->server(); }
  [[nodiscard]] Background look() const;
  [[nodiscard]] std::unique_ptr<RootPixmap> contentOf(const Background& background) const;
  [[nodiscard]] std::optional<std::string> set(const RootPixmap& picture);
  [[nodiscard]] Saved* savedUnder(std::int64_t number);
  [[nodiscard]] bool isWhole(const Saved& saved) const;

  WallpaperSurroundings surroundings_;
  /// What was told; the newest last.
  std::list<Saved> saved_;
  std::int64_t lastNumber_ = 0;
  /// By monitor, while the root picture is the one that we set last.
  QHash<QString, QString> ours_;
  std::vector<std::uint32_t> ourPixmap_;
  std::unique_ptr<XEvents::Watch> watch_;
};

}  // namespace linux_desktop
