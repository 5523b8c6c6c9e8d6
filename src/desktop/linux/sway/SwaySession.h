#pragma once

#include <QCoreApplication>
#include <QRegularExpression>
#include <functional>
#include <memory>
#include <utility>

#include "desktop/linux/sway/SwayHotKeys.h"
#include "desktop/linux/sway/SwaySocket.h"
#include "desktop/linux/sway/SwayWallpaper.h"
#include "desktop/linux/sway/SwayWindows.h"
#include "desktop/linux/windowsystem/OtherApplications.h"

namespace linux_desktop {

/// What sway does for us beside what Wayland has for it. Main thread only.
class SwaySession {
 public:
  /// Null where no sway answers, or one that is not the process `compositor`, inside of which
  /// another compositor runs. 0: that is not known.
  [[nodiscard]] static std::unique_ptr<SwaySession> open(qint64 compositor) {
    auto socket = SwaySocket::open();
    if (!socket) return nullptr;
    const qint64 sway = socket->process();
    if (sway != compositor && sway > 0 && compositor > 0) return nullptr;
    return std::unique_ptr<SwaySession>(new SwaySession(std::move(socket)));
  }

  [[nodiscard]] WindowHider* windowHider() { return &windows_; }
  [[nodiscard]] platform::port::HotKeys* hotKeys() { return &hotKeys_; }
  /// See SwayHotKeys.
  void setKeymap(std::function<const Keymap*()> keymap) { hotKeys_.setKeymap(std::move(keymap)); }
  void keymapChanged() { hotKeys_.keymapChanged(); }
  /// Whether a surface that comes later stands below the others of its layer, as up to 1.9.
  [[nodiscard]] bool stacksDownwards() {
    const QJsonDocument version = socket_->call(SwaySocket::Question::Version);
    constexpr int kFirstOther = 10;
    return version[QLatin1String("major")].toInt() == 1 &&
           version[QLatin1String("minor")].toInt() < kFirstOther;
  }
  /// A window of ours, to the workspace on which the user works: the mode may hide what is on its
  /// own.
  bool bringToUser(const QString& title) {
    const QString quoted = QRegularExpression::escape(title);
    const QString pid = QString::number(QCoreApplication::applicationPid());
    socket_->command(
        ("[pid=" + pid + " title=\"^" + quoted + "\"] move container to workspace current, focus")
            .toUtf8());
    return true;
  }
  /// `otherwise`: for monitors whose picture is not sway's.
  [[nodiscard]] std::shared_ptr<WallpaperAdapter> wallpaper(
      std::shared_ptr<WallpaperAdapter> otherwise) {
    return std::make_shared<SwayWallpaper>(*socket_, std::move(otherwise));
  }

 private:
  explicit SwaySession(std::unique_ptr<SwaySocket> socket) : socket_(std::move(socket)) {}

  std::unique_ptr<SwaySocket> socket_;
  SwayWindows windows_{*socket_};
  SwayHotKeys hotKeys_{*socket_};
};

/// What i3 does for us beside what X11 has for it. Main thread only.
class I3Session {
 public:
  /// Null where no i3 answers at `path`.
  [[nodiscard]] static std::unique_ptr<I3Session> open(const QByteArray& path) {
    auto socket = SwaySocket::openI3(path);
    if (!socket) return nullptr;
    return std::unique_ptr<I3Session>(new I3Session(std::move(socket)));
  }

  [[nodiscard]] WindowHider* windowHider() { return &windows_; }

 private:
  explicit I3Session(std::unique_ptr<SwaySocket> socket) : socket_(std::move(socket)) {}

  std::unique_ptr<SwaySocket> socket_;
  SwayWindows windows_{*socket_};
};

}  // namespace linux_desktop
