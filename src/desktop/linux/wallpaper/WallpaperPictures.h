#pragma once

#include <QFutureWatcher>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wallpaper/Backdrop.h"
#include "desktop/linux/wallpaper/BackdropRenderer.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"
#include "platform/port/Screens.h"

namespace linux_desktop {

/// The desktop's pictures, over the adapter of whichever desktop runs.
class WallpaperPictures final : public platform::port::DesktopPictures, public BackdropSource {
 public:
  /// `facts` outlives this. Nobody is asked anything yet.
  explicit WallpaperPictures(DesktopFacts& facts);

  [[nodiscard]] std::optional<std::string> path(const platform::port::ScreenId& screen) override;
  [[nodiscard]] std::optional<platform::Dictionary> options(
      const platform::port::ScreenId& screen) override;
  [[nodiscard]] std::optional<std::string> set(const std::string& path,
                                               const platform::port::ScreenId& screen,
                                               const platform::Dictionary& options) override;

  /// Whether the picture of the desktop that runs now can be set.
  [[nodiscard]] bool canBeSet() { return choice_.current().adapter != nullptr; }
  /// Called when a program comes or goes that this may depend on. Empty: nobody watches.
  void setProgramsChanged(std::function<void()> changed) {
    choice_.setProgramsChanged(std::move(changed));
  }

  [[nodiscard]] bool mayHaveIcons() override;
  [[nodiscard]] std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  [[nodiscard]] std::optional<QImage> render(const Backdrop& backdrop,
                                             const Monitor& monitor) override;
  void setChanged(std::function<void()> changed) override;

  /// How many milliseconds an operation of this process waits for a picture to be read. One that
  /// takes longer is set, or drawn, once it has been read; should it turn out broken, that is a
  /// line on standard error and nothing has changed.
  static void waitForPictures(int longest) { longestReading_ = longest; }

 private:
  /// What was last told of a screen, and what that stands for.
  struct Told {
    std::string path;
    Monitor monitor;
    const WallpaperRow* desktop = nullptr;
    platform::Dictionary state;
    /// The options that had to become others since, so that a picture would be seen.
    platform::Dictionary changed;
  };

  /// A backdrop that is being drawn, or has been and nobody has come for it.
  struct Drawing {
    struct Subject {
      Backdrop backdrop;
      Monitor monitor;
      BackdropLayout layout;
      bool operator==(const Subject&) const = default;
    };
    explicit Drawing(Subject what) : subject(std::move(what)) {}

    Subject subject;
    QFutureWatcher<QImage> image;
  };

  [[nodiscard]] std::optional<Monitor> monitorNamed(const platform::port::ScreenId& screen) const;
  [[nodiscard]] Fault show(const std::string& path, const platform::port::ScreenId& screen,
                           const platform::Dictionary& options);
  /// Calls `give` once the screen's next picture has been read and found whole.
  void await(const platform::port::ScreenId& screen, const QFuture<Fault>& read,
             std::function<Fault()> give);
  [[nodiscard]] Fault give(const platform::port::ScreenId& screen, const QString& file,
                           const platform::Dictionary& options);
  [[nodiscard]] int patience() const;
  [[nodiscard]] BackdropLayout layout();
  void forget();
  void complain(const std::string& reason);
  [[nodiscard]] Fault putBack(const Told& told, const platform::Dictionary& options);

  DesktopFacts& facts_;
  WallpaperChoice choice_;
  std::map<platform::port::ScreenId, Told> told_;
  std::function<void()> changed_;
  std::map<platform::port::ScreenId, std::unique_ptr<QFutureWatcher<Fault>>> awaited_;
  std::map<QString, std::unique_ptr<Drawing>> drawings_;
  /// Gathers the changes that follow each other at once.
  OneShot gathering_;
  /// In this turn, as every monitor's picture is refused for the same reason.
  std::string complaint_;
  /// Until the pictures that were read are no longer kept.
  OneShot forgetting_;

  static inline int longestReading_ = 300;
};

}  // namespace linux_desktop
