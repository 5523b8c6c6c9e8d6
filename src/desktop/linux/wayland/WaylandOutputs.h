#pragma once

#include <QObject>
#include <QPoint>
#include <QString>
#include <memory>
#include <vector>

#include "desktop/linux/wayland/WaylandConnection.h"
#include "desktop/linux/windowsystem/MonitorScreens.h"

namespace linux_desktop {

/// One output that shows a part of the desktop, as the compositor describes it.
class WaylandOutput {
 public:
  /// `changed` is called when the compositor has described it anew, as a whole. `logical` may be
  /// null: then points are device pixels through the output's own whole scale.
  WaylandOutput(std::uint32_t global, WaylandProxy<wl_output> output,
                zxdg_output_manager_v1* logical, std::function<void()> changed);
  WaylandOutput(const WaylandOutput&) = delete;
  WaylandOutput& operator=(const WaylandOutput&) = delete;

  /// Until it is described for the first time it has no size.
  [[nodiscard]] const Monitor& monitor() const { return monitor_; }
  /// Its number among the globals: one that was switched off comes back under another.
  [[nodiscard]] std::uint32_t global() const { return global_; }
  [[nodiscard]] wl_output* get() const { return output_.get(); }

 private:
  /// What the compositor says, piece by piece.
  struct Description {
    QString name;
    QPoint place;
    QSize mode;
    int transform = WL_OUTPUT_TRANSFORM_NORMAL;
    int scale = 1;
    QRect logical;
  };

  void listen();
  void listenToLogical();
  void described();

  std::uint32_t global_;
  WaylandProxy<wl_output> output_;
  WaylandProxy<zxdg_output_v1> logical_;
  std::function<void()> changed_;
  Description told_;
  Monitor monitor_;
};

/// The outputs of the compositor, kept current. Main thread only.
class WaylandOutputs final : public QObject {
  Q_OBJECT

 public:
  /// `connection` outlives this.
  explicit WaylandOutputs(WaylandConnection& connection);

  /// Those that are described, in the order in which they came.
  [[nodiscard]] std::vector<const WaylandOutput*> all() const;
  /// Null: that is on none.
  [[nodiscard]] const WaylandOutput* at(const QPoint& point) const;
  [[nodiscard]] const WaylandOutput* named(const QString& name) const;
  /// By its number among the globals.
  [[nodiscard]] const WaylandOutput* numbered(std::uint32_t global) const;

 Q_SIGNALS:
  /// One came, or is another now: in place, size or scale.
  void changed();
  /// One goes; what stands on it is of no use any more.
  void goes(const linux_desktop::WaylandOutput& output);

 private:
  void add(const WaylandGlobal& global);
  void remove(std::uint32_t global);
  [[nodiscard]] const WaylandOutput* first(
      const std::function<bool(const WaylandOutput& output)>& fits) const;

  WaylandConnection& connection_;
  WaylandProxy<zxdg_output_manager_v1> logical_;
  std::vector<std::unique_ptr<WaylandOutput>> outputs_;
};

/// The outputs as screens; one of no use where there is no output.
class WaylandScreens final : public MonitorScreens {
 public:
  /// `outputs` outlives this.
  explicit WaylandScreens(WaylandOutputs& outputs);
};

}  // namespace linux_desktop
