#include "desktop/linux/wallpaper/PcManFmQtOrders.h"

#include <QDBusConnection>
#include <limits>
#include <span>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

// A large photograph takes a busy machine three seconds.
constexpr int kLate = 5000;  // ms

// An order whose answer is given up is carried out all the same. If the desktop ends, the bus
// answers in its place.
constexpr int kUnlimited = std::numeric_limits<int>::max();

}  // namespace

PcManFmQtOrders::PcManFmQtOrders(Answered answered) : answered_(std::move(answered)) {
  late_.setSingleShot(true);
  late_.setInterval(kLate);
  QObject::connect(&late_, &QTimer::timeout, &late_, [] {
    qCWarning(lcWallpaper, "pcmanfm-qt does not answer; it gets its picture when it goes on.");
  });
}

PcManFmQtOrders::~PcManFmQtOrders() {
  if (!next_) return;
  const QDBusMessage wished = message(*next_);
  BusPeer::send(std::span(&wished, 1));
}

QDBusMessage PcManFmQtOrders::message(const Order& order) const {
  return peer_.method(QStringLiteral("/Application"), QStringLiteral("org.pcmanfm.Application"),
                      QStringLiteral("setWallpaper"), {order.file, order.mode});
}

const PcManFmQtOrders::Order* PcManFmQtOrders::last() const {
  if (next_) return &*next_;
  return onItsWay_ ? &*onItsWay_ : nullptr;
}

void PcManFmQtOrders::give(Order order) {
  if (!onItsWay_) {
    onItsWay_ = std::move(order);
    send();
  } else if (order == *onItsWay_) {
    next_.reset();
  } else {
    next_ = std::move(order);
  }
}

void PcManFmQtOrders::send() {
  call_.emplace(QDBusConnection::sessionBus().asyncCall(message(*onItsWay_), kUnlimited));
  // Queued, because the call is gone once its answer was taken.
  QObject::connect(
      &*call_, &QDBusPendingCallWatcher::finished, &late_, [this] { takeAnswer(); },
      Qt::QueuedConnection);
  late_.start();
}

void PcManFmQtOrders::takeAnswer() {
  late_.stop();
  const QDBusMessage answer = call_->reply();
  call_.reset();
  const Order done = *std::exchange(onItsWay_, std::exchange(next_, std::nullopt));
  const bool refused = answer.type() == QDBusMessage::ErrorMessage;
  answered_(done, refused ? std::optional(reasonOf(answer)) : std::nullopt);
  if (onItsWay_) send();
}

}  // namespace linux_desktop
