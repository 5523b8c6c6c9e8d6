#pragma once

#include <QJsonObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/wallpaper/FileWatch.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

/// Plasma: a wallpaper plugin a screen, with settings of its own, reached through the scripting of
/// the shell. One bus call reads, one more sets. The shell tells nobody of a change, but notes each
/// in a file, also which picture of a slide show is on.
class PlasmaWallpaper final : public WallpaperAdapter {
 public:
  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<platform::Dictionary> state(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& state) override;
  void setChanged(std::function<void()> changed) override;

 private:
  /// What the shell keeps for the screen that begins where the monitor does.
  [[nodiscard]] std::optional<QJsonObject> read(const Monitor& monitor,
                                                const QDeadlineTimer& deadline);
  [[nodiscard]] std::optional<std::string> write(const QJsonObject& wanted,
                                                 const QDeadlineTimer& deadline);
  /// The lines that the script printed; none when the shell does not answer or the script stopped
  /// before its end.
  [[nodiscard]] std::optional<std::vector<QByteArray>> evaluate(const QString& script,
                                                                const QDeadlineTimer& deadline);

  void fileChanged();

  BusPeer shell_{QStringLiteral("org.kde.plasmashell")};
  std::function<void()> changed_;
  /// What `read` was last printed. The file has more in it than pictures.
  std::optional<std::vector<QByteArray>> lastRead_;
  std::optional<FileWatch> file_;
};

}  // namespace linux_desktop
