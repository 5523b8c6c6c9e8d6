#pragma once

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <functional>
#include <memory>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/bus/BusSignal.h"
#include "desktop/linux/gsettings/GuardedSettings.h"

namespace linux_desktop {

/// GNOME Shell as our extension of it (gnome-shell/ in this tree) opens it to us. The extension
/// serves whoever has our name on the session bus, and only while it is turned on: not before that
/// name is ours, not while the screen is locked, not once the user turned it off. It keeps nothing
/// for a program that it does not serve: `ready` comes at first and whenever it serves us anew, and
/// who had it do something says so again then. Main thread only.
class GnomeShell final : public QObject {
  Q_OBJECT

 public:
  /// Turns the extension on, unless the user has turned it off, or all extensions: then it is off
  /// from the start on, after a line. Null where no GNOME Shell answers, within ten seconds, or
  /// where it does not have the extension: if that is installed, one line on standard error says
  /// why. What it does not do yet it may do later.
  [[nodiscard]] static std::unique_ptr<GnomeShell> open();

  /// Whether the extension serves us now.
  [[nodiscard]] bool isReady() const { return isReady_; }
  /// Whether it is not going to before somebody turns it on.
  [[nodiscard]] bool isOff() const { return isOff_; }

  // Interfaces are named by their last part: "Covers" is org.calmdeck.Shell.Covers.

  /// Sends it behind what was sent before. Nothing happens while the extension does not serve us;
  /// an error is a line on standard error.
  void send(const QString& interface, const QString& method, const QVariantList& arguments = {});
  /// `answered` gets the reply, or an error, also where the extension does not serve us or takes
  /// longer than five seconds; from the event loop, unless `asker` is gone by then.
  void ask(const QString& interface, const QString& method, const QVariantList& arguments,
           QObject* asker, std::function<void(const QDBusMessage& answer)> answered);

  /// Waits for the answer, half a second at most. False: it was not done, or is done late.
  [[nodiscard]] bool call(const QString& interface, const QString& method,
                          const QVariantList& arguments = {});

  /// Whatever the extension says by this signal, for as long as what comes back is kept.
  [[nodiscard]] static std::unique_ptr<BusSignal> listen(
      const QString& interface, const QString& signal,
      std::function<void(const QVariantList& values)> heard);

 Q_SIGNALS:
  void ready();
  /// What it did for us is undone, but that hidden windows stay so.
  void gone();
  /// It does not serve us, and is not going to until somebody turns it on: the shell would not, or
  /// the user has turned it off. Not said of what is off from the start on.
  void turnedOff();
  /// The shell itself has left the session bus.
  void ended();

 private:
  explicit GnomeShell(std::unique_ptr<GuardedSettings> settings);
  void turnOn();
  void left(const QString& name);
  void lookWhetherTurnedOff();

  bool isReady_ = false;
  bool isOff_ = false;
  /// The shell's, about extensions; null where they cannot be read.
  std::unique_ptr<GuardedSettings> settings_;
  BusPeer peer_;
  QDBusServiceWatcher names_;
  std::unique_ptr<BusSignal> readiness_;
};

}  // namespace linux_desktop
