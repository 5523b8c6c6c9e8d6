#include "desktop/linux/notifications/DaemonNotifier.h"

#include <QDBusConnection>
#include <QStringList>
#include <QVariantMap>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kApplication = QStringLiteral("Calmdeck");
const QString kDesktopEntry = QStringLiteral("org.calmdeck.Calmdeck");  // the icon's name as well

constexpr uchar kOrdinaryUrgency = 1;
constexpr int kAsLongAsUsual = -1;

QDBusMessage notify(const QString& summary, uint replaced) {
  const QVariantMap hints{{"urgency", QVariant::fromValue(kOrdinaryUrgency)},
                          {"transient", true},
                          {"desktop-entry", kDesktopEntry}};
  QDBusMessage call = busCall(kNotifications, kNotificationsPath, kNotifications, "Notify",
                              {kApplication, replaced, kDesktopEntry, summary, QString(),
                               QStringList(), hints, kAsLongAsUsual});
  call.setAutoStartService(true);
  return call;
}

}  // namespace

DaemonNotifier::DaemonNotifier(NotificationDaemon& daemon)
    : daemon_(daemon), hanging_(kBusPatience, [this] {
        complain(
            "what shows notifications does not answer; it will get the newest one when it does");
      }) {
  connect(&daemon_, &NotificationDaemon::changed, this, [this] {
    if (daemon_.identity().owner != owner_) forget();
  });
}

std::optional<std::string> DaemonNotifier::show(std::string_view text) {
  if (!daemon_.hasBus()) return "There is no session bus.";
  if (daemon_.state() == NotificationDaemon::State::None && !daemon_.canBeStarted()) {
    return "Nothing shows notifications here.";
  }
  const QString summary = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  if (unanswered_) {
    next_ = summary;
  } else {
    send(summary);
  }
  return std::nullopt;
}

void DaemonNotifier::send(const QString& text) {
  unanswered_ = true;
  // One that has to be started takes longer; the bus sees to that.
  if (daemon_.state() != NotificationDaemon::State::None) hanging_.start();
  ask(daemon_.bus(), notify(text, id_), this,
      [this](const QDBusMessage& answer) { takeAnswer(answer); });
}

void DaemonNotifier::takeAnswer(const QDBusMessage& answer) {
  unanswered_ = false;
  hanging_.stop();
  if (isError(answer)) {
    forget();
    complain("a notification could not be shown: " + answer.errorMessage());
  } else {
    complained_ = false;
    // Not every version of Qt tells who answered. A new owner is told of before its first answer.
    remember(daemon_.identity().owner, answer.arguments().value(0).toUInt());
  }
  if (next_) send(*std::exchange(next_, std::nullopt));
}

void DaemonNotifier::remember(const QString& owner, uint id) {
  if (owner_ != owner) {
    forget();
    owner_ = owner;
    closed_.emplace(
        daemon_.bus(),
        BusSignal::Source{owner_, kNotificationsPath, kNotifications, "NotificationClosed"},
        [this](const QDBusMessage& signal) {
          // Some do not show a new text in the place of one that is closed.
          if (signal.arguments().value(0).toUInt() == id_) forget();
        });
  }
  id_ = id;
}

// Who hears of nothing that is not ours is not woken by what other programs show.
void DaemonNotifier::forget() {
  closed_.reset();
  owner_.clear();
  id_ = 0;
}

void DaemonNotifier::complain(const QString& why) {
  if (std::exchange(complained_, true)) return;
  qCWarning(lcNotifications, "%s", qPrintable(why));
}

}  // namespace linux_desktop
