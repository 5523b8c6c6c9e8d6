#pragma once

#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/files/FileWatch.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/wallpaper/WallpaperTable.h"
#include "platform/foundation/Value.h"

namespace linux_desktop {

/// What LXQt's desktop is told to show. It answers an order once it has loaded, scaled and drawn
/// the picture, which takes it as long as it takes: nobody waits here. One order is on its way at a
/// time; of those given meanwhile only the last one follows it, so that a desktop that hung for
/// long goes straight to what is wished by then. Main thread only.
class PcManFmQtOrders {
 public:
  struct Order {
    QString file;
    /// Empty: the mode stays.
    QString mode;
    /// What is restored; none where a new picture is shown.
    std::optional<platform::Dictionary> state;

    bool operator==(const Order&) const = default;
  };
  /// An order was answered; with the reason where it was refused. The next one goes out after this.
  using Answered = std::function<void(const Order&, const std::optional<std::string>& reason)>;

  explicit PcManFmQtOrders(Answered answered);
  /// What was still to go out is sent, so that the desktop ends up as wished without us.
  ~PcManFmQtOrders();
  PcManFmQtOrders(const PcManFmQtOrders&) = delete;
  PcManFmQtOrders& operator=(const PcManFmQtOrders&) = delete;

  void give(Order order);
  /// The one that was given last, until it is answered; else null.
  [[nodiscard]] const Order* last() const;

 private:
  [[nodiscard]] QDBusMessage message(const Order& order) const;
  void send();
  void takeAnswer(const QDBusMessage& answer);

  BusPeer peer_;
  Answered answered_;
  std::optional<Order> onItsWay_;
  std::optional<Order> next_;
  /// Until an order is so late that the user should read of it.
  QTimer late_;
};

/// LXQt's desktop: one picture for all monitors. It is told over the session bus, without waiting
/// for it: a refusal that could not be foreseen is a line on standard error. What it has been told
/// stands in its settings file, which it writes as a whole before it answers; until then what it
/// was told last counts.
class PcManFmQtWallpaper final : public WallpaperAdapter {
 public:
  /// Whether its desktop is there, where no window can be seen that shows it: its file manager
  /// alone owns the same name.
  [[nodiscard]] static bool hasDesktop();
  explicit PcManFmQtWallpaper(const WallpaperSurroundings& surroundings);
  ~PcManFmQtWallpaper() override;

  std::optional<Backdrop> backdrop(const Monitor& monitor) override;
  std::optional<WallpaperState> state(const Monitor& monitor) override;
  std::optional<std::string> show(const Monitor& monitor, const QString& file,
                                  const platform::Dictionary& options) override;
  std::optional<std::string> restore(const Monitor& monitor,
                                     const platform::Dictionary& kept) override;
  void setChanged(std::function<void()> changed) override;
  [[nodiscard]] BackdropManner manner() const override;

 private:
  struct Settings;
  [[nodiscard]] Settings read() const;
  [[nodiscard]] Backdrop backdropOf(const Settings& settings) const;
  void answered(const PcManFmQtOrders::Order& order, const std::optional<std::string>& reason);
  /// Gives the file the contents that a state tells of.
  void putBackFile(const platform::Dictionary& state) const;
  [[nodiscard]] std::optional<std::string> putBackFile(const std::optional<QByteArray>& old) const;

  /// Where nobody sees its windows each monitor has one of its own; else one spans them all.
  bool hasWindowPerMonitor_;
  QString name_;  ///< of the settings file, below a configuration folder
  QString file_;
  PcManFmQtOrders orders_;
  /// What the file holds, beside the picture, since we had a picture shown.
  std::optional<QByteArray> ours_;
  /// The picture that is shown although the settings say colours only.
  QString inspiteOfMode_;
  std::function<void()> changed_;
  std::unique_ptr<FileWatch> watch_;
};

}  // namespace linux_desktop
