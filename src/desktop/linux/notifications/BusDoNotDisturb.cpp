#include "desktop/linux/notifications/DaemonAdapters.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QObject>
#include <QPointer>
#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/bus/BusSignal.h"
#include "desktop/linux/bus/XfconfChannel.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/notifications/FormerAbsence.h"

namespace linux_desktop {
namespace {

/// How a daemon tells of its state on the bus, and takes another.
struct BusSwitch {
  /// Asks for the state.
  QDBusMessage question;
  /// The state as an answer or a signal has it; none where it does not say.
  std::function<std::optional<bool>(const QVariant& told)> stateOf;
  /// What leads to a state.
  std::function<QDBusMessage(bool on)> change;
  /// The signal of the same object and interface that tells of changes, and the place of the state
  /// among its values; only with these texts at the beginning of those.
  QString signal = {};
  qsizetype placeInSignal = 0;
  QStringList signalBegins = {};
};

/// A daemon that speaks over the bus. Nothing waits but settle(). A write that a hanging daemon
/// does not answer stays in its queue and comes into force when it goes on, in order with those
/// after it, so that the last one holds.
class BusDoNotDisturb : public QObject, public DoNotDisturbAdapter {
 public:
  BusDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon, BusSwitch way)
      : bus_(std::move(bus)),
        way_(std::move(way)),
        patience_(daemon.patience),
        hanging_(kBusPatience, [name = daemon.name] {
          qCWarning(
              lcNotifications,
              "%s does not answer; Do Not Disturb will be what was asked for last when it does",
              qPrintable(name));
        }) {
    if (way_.signal.isEmpty()) return;
    signal_.emplace(bus_,
                    BusSignal::Source{way_.question.service(), way_.question.path(),
                                      way_.question.interface(), way_.signal, way_.signalBegins},
                    [this](const QDBusMessage& signal) { told(signal); });
  }

  [[nodiscard]] std::optional<bool> isOn() override { return state_; }
  [[nodiscard]] bool set(bool on) override {
    write(way_.change(on), on);
    return true;
  }

  void settle() override {
    if (!state_ && firstRead_) firstRead_->waitForFinished();
  }

  /// Asks for the state at the start; waited for by settle().
  void readFirst() {
    const int left = std::max(1, static_cast<int>(patience_.remainingTime()));
    firstRead_ = ask(
        bus_, way_.question, this,
        [this](const QDBusMessage& answer) { ranOut(answer) ? read() : takeAnswer(answer); }, left);
  }

 protected:
  /// The state that an answer or an error to the question means.
  [[nodiscard]] virtual std::optional<bool> stateIn(const QDBusMessage& answer) {
    return isError(answer) ? std::nullopt : way_.stateOf(answer.arguments().value(0));
  }

  /// Sends a change that leads to `on`. `done` gets the answer, be it an error.
  void write(const QDBusMessage& change, bool on,
             std::function<void(const QDBusMessage&)> done = {}) {
    state_ = on;
    ++unansweredWrites_;
    if (!hanging_.isActive()) hanging_.start();
    ask(bus_, change, this, [this, done = std::move(done)](const QDBusMessage& answer) {
      if (--unansweredWrites_ == 0) hanging_.stop();
      if (done) done(answer);
      if (!isError(answer)) return;
      qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s",
                qPrintable(answer.errorMessage()));
      read();
    });
  }

  /// The state that a change will lead to which can only be sent later.
  void assume(bool on) { state_ = on; }
  /// The daemon says by itself what the state is. False where that is older than what we wrote.
  bool heard(bool on) {
    // A peer answers and tells in order: what comes before the answer to a write is older than
    // that.
    if (unansweredWrites_ > 0) return false;
    state_ = on;
    return true;
  }

 private:
  void told(const QDBusMessage& signal) {
    const QVariantList values = signal.arguments();
    if (const auto on = way_.stateOf(values.value(way_.placeInSignal))) {
      heard(*on);
    } else if (const auto unsaid = values.value(2).toStringList(); !unsaid.isEmpty()) {
      // Properties of which only the names are told.
      read();
    }
  }

  void read() {
    ask(bus_, way_.question, this, [this](const QDBusMessage& answer) { takeAnswer(answer); });
  }

  void takeAnswer(const QDBusMessage& answer) {
    const std::optional<bool> on = stateIn(answer);
    if (on) {
      heard(*on);
      return;
    }
    qCWarning(lcNotifications, "Do Not Disturb cannot be read: %s",
              qPrintable(answer.errorMessage()));
  }

  QDBusConnection bus_;
  BusSwitch way_;
  QDeadlineTimer patience_;
  std::optional<bool> state_;
  int unansweredWrites_ = 0;
  QPointer<QDBusPendingCallWatcher> firstRead_;
  OneShot hanging_;
  std::optional<BusSignal> signal_;
};

using DaemonPtr = std::unique_ptr<DoNotDisturbAdapter>;

std::optional<bool> flagIn(const QVariant& told) {
  return told.toBool();
}

const QString kXfceChannel = QStringLiteral("xfce4-notifyd");
const QString kXfceProperty = QStringLiteral("/do-not-disturb");

class XfceDoNotDisturb final : public BusDoNotDisturb {
 public:
  XfceDoNotDisturb(const QDBusConnection& bus, const NotificationDaemonIdentity& daemon)
      : BusDoNotDisturb(
            bus, daemon,
            {.question = XfconfChannel(kXfceChannel).question(kXfceProperty),
             .stateOf = {},
             .change = [this](bool on) {
               return channel_.order(
                   {kXfceProperty, isSet_ ? std::optional<QVariant>(on) : std::nullopt});
             }}) {
    channel_.setChanged([this](const XfconfChannel::Change& change) {
      if (change.property != kXfceProperty) return;
      if (heard(change.value && change.value->toBool())) isSet_ = change.value.has_value();
    });
  }
  [[nodiscard]] bool set(bool on) override {
    isSet_ = !absence_.comesBack(on, isOn(), isSet_);
    return BusDoNotDisturb::set(on);
  }
  [[nodiscard]] bool outlivesDaemon() const override { return true; }

 protected:
  [[nodiscard]] std::optional<bool> stateIn(const QDBusMessage& answer) override {
    const auto properties = XfconfChannel::propertiesIn(answer);
    if (!properties) return std::nullopt;
    isSet_ = properties->contains(kXfceProperty);
    return properties->value(kXfceProperty).toBool();
  }

 private:
  XfconfChannel channel_{kXfceChannel};
  /// After what has been written.
  bool isSet_ = true;
  FormerAbsence absence_{QStringLiteral("xfce4-notifyd.do-not-disturb")};
};

const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString kDunst = QStringLiteral("org.dunstproject.cmd0");

/// A daemon that has its state in properties of that interface: a flag, or a level of which any but
/// 0 is on. Where it has several of `names`, the first counts.
BusSwitch propertySwitch(const QString& owner, const QString& interface, const QStringList& names,
                         std::function<QDBusMessage(bool)> change) {
  const auto stateOf = [names](const QVariant& told) -> std::optional<bool> {
    const auto properties = qdbus_cast<QVariantMap>(told);
    for (const QString& name : names) {
      if (properties.contains(name)) return properties.value(name).toUInt() > 0;
    }
    return std::nullopt;
  };
  return {.question = busCall(owner, kNotificationsPath, kProperties, "GetAll", {interface}),
          .stateOf = stateOf,
          .change = std::move(change),
          .signal = "PropertiesChanged",
          .placeInSignal = 1,
          .signalBegins = {interface}};
}

class BudgieDoNotDisturb final : public BusDoNotDisturb {
 public:
  using BusDoNotDisturb::BusDoNotDisturb;

  [[nodiscard]] bool set(bool on) override {
    settle();
    const std::optional<bool> now = isOn();
    if (now && *now != on) return BusDoNotDisturb::set(on);
    if (!now) {
      qCWarning(lcNotifications,
                "Do Not Disturb could not be switched: it does not say whether it "
                "is on, and can only be turned round");
    }
    return now.has_value();
  }
};

class InhibitionDoNotDisturb final : public BusDoNotDisturb {
 public:
  InhibitionDoNotDisturb(const QDBusConnection& bus, const NotificationDaemonIdentity& daemon)
      : BusDoNotDisturb(bus, daemon,
                        propertySwitch(daemon.owner, kNotifications, {"Inhibited"}, {})),
        owner_(daemon.owner) {}

  [[nodiscard]] std::optional<bool> isOn() override {
    return wanted_ && BusDoNotDisturb::isOn().value_or(true);
  }
  [[nodiscard]] bool set(bool on) override;

 private:
  void inhibit();
  void release();

  QString owner_;
  bool wanted_ = false;
  bool inhibiting_ = false;  // asked for, the ticket is not here yet
  std::optional<uint> ticket_;
};

bool InhibitionDoNotDisturb::set(bool on) {
  // It is not quiet: whoever ended that has ended ours, too.
  if (!inhibiting_ && !BusDoNotDisturb::isOn().value_or(true)) ticket_.reset();
  wanted_ = on;
  assume(on);
  if (!inhibiting_ && on != ticket_.has_value()) on ? inhibit() : release();
  return true;
}

void InhibitionDoNotDisturb::inhibit() {
  inhibiting_ = true;
  write(busCall(owner_, kNotificationsPath, kNotifications, "Inhibit",
                {"org.calmdeck.Calmdeck", "Presentation mode", QVariantMap()}),
        true, [this](const QDBusMessage& answer) {
          inhibiting_ = false;
          if (isError(answer)) {
            wanted_ = false;
            return;
          }
          ticket_ = answer.arguments().value(0).toUInt();
          if (!wanted_) release();
        });
}

void InhibitionDoNotDisturb::release() {
  write(busCall(owner_, kNotificationsPath, kNotifications, "UnInhibit",
                {*std::exchange(ticket_, {})}),
        false);
}

template <class Adapter = BusDoNotDisturb, class... Way>
DaemonPtr asked(const QDBusConnection& bus, const NotificationDaemonIdentity& daemon, Way... way) {
  auto adapter = std::make_unique<Adapter>(bus, daemon, std::move(way)...);
  adapter->readFirst();
  return adapter;
}

}  // namespace

DaemonPtr xfceDoNotDisturb(const NotificationDaemonIdentity& daemon, const QDBusConnection& bus) {
  return asked<XfceDoNotDisturb>(bus, daemon);
}

DaemonPtr dunstDoNotDisturb(const NotificationDaemonIdentity& daemon, const QDBusConnection& bus) {
  // From 1.12 on, `paused` stands for the levels 100 and 0, so that setting it serves every
  // version.
  const auto pause = [owner = daemon.owner](bool on) {
    return busCall(owner, kNotificationsPath, kProperties, "Set",
                   {kDunst, "paused", QVariant::fromValue(QDBusVariant(on))});
  };
  return asked(bus, daemon, propertySwitch(daemon.owner, kDunst, {"pauseLevel", "paused"}, pause));
}

DaemonPtr swayncDoNotDisturb(const NotificationDaemonIdentity& daemon, const QDBusConnection& bus) {
  const auto call = [owner = daemon.owner](const QString& method, const QVariantList& arguments) {
    return busCall(owner, "/org/erikreider/swaync/cc", "org.erikreider.swaync.cc", method,
                   arguments);
  };
  return asked(bus, daemon,
               BusSwitch{.question = call("GetDnd", {}),
                         .stateOf = &flagIn,
                         .change = [call](bool on) { return call("SetDnd", {on}); },
                         .signal = "Subscribe",
                         .placeInSignal = 1});
}

DaemonPtr budgieDoNotDisturb(const NotificationDaemonIdentity& daemon, const QDBusConnection& bus) {
  const auto call = [owner = daemon.owner](const QString& method) {
    return busCall(owner, "/org/budgie_desktop/Notifications",
                   "org.buddiesofbudgie.budgie.Dispatcher", method);
  };
  return asked<BudgieDoNotDisturb>(
      bus, daemon,
      BusSwitch{.question = call("GetDoNotDisturb"),
                .stateOf = &flagIn,
                .change = [call](bool) { return call("ToggleDoNotDisturb"); },
                .signal = "DoNotDisturbChanged"});
}

DaemonPtr inhibitionDoNotDisturb(const NotificationDaemonIdentity& daemon,
                                 const QDBusConnection& bus) {
  return std::make_unique<InhibitionDoNotDisturb>(bus, daemon);
}

}  // namespace linux_desktop
