#include "desktop/linux/wayland/WaylandConnection.h"

#include <poll.h>

#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QTimer>
#include <cerrno>
#include <cstring>

#include "desktop/linux/files/Processes.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

constexpr std::chrono::seconds kAnswer{1};
/// Where the compositor itself is gone, Qt says so within that time and ends the program.
constexpr std::chrono::milliseconds kQtsTurn{200};

/// Whether there is something to read before then.
bool isReadable(int socket, const QDeadlineTimer& deadline) {
  pollfd look{socket, POLLIN, 0};
  int ready = 0;
  do {
    ready = ::poll(&look, 1, static_cast<int>(deadline.remainingTime()));
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

}  // namespace

std::unique_ptr<WaylandConnection> WaylandConnection::open() {
  if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) return nullptr;
  Display display(wl_display_connect(nullptr));
  if (!display) {
    qCWarning(lcWayland, "the compositor takes no second connection: %s", std::strerror(errno));
    return nullptr;
  }
  std::unique_ptr<WaylandConnection> connection(new WaylandConnection(std::move(display)));
  connection->roundTrip();
  return connection->isLost() ? nullptr : std::move(connection);
}

WaylandConnection::WaylandConnection(Display display)
    : display_(std::move(display)),
      registry_(wl_display_get_registry(display_.get())),
      readable_(wl_display_get_fd(display_.get()), QSocketNotifier::Read),
      writable_(wl_display_get_fd(display_.get()), QSocketNotifier::Write) {
  static constexpr wl_registry_listener kListener{
      [](void* self, wl_registry*, std::uint32_t name, const char* interface,
         std::uint32_t version) {
        static_cast<WaylandConnection*>(self)->came({name, interface, version});
      },
      [](void* self, wl_registry*, std::uint32_t name) {
        static_cast<WaylandConnection*>(self)->went(name);
      }};
  wl_registry_add_listener(registry_.get(), &kListener, this);
  writable_.setEnabled(false);
  connect(&readable_, &QSocketNotifier::activated, this, [this] { dispatch(QDeadlineTimer(0)); });
  connect(&writable_, &QSocketNotifier::activated, this, [this] { flush(); });
  connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
          [this] { flush(); });
}

WaylandConnection::~WaylandConnection() = default;

qint64 WaylandConnection::compositor() const {
  return processBehind(wl_display_get_fd(display_.get()));
}

void WaylandConnection::came(const WaylandGlobal& global) {
  globals_.push_back(global);
  Q_EMIT globalCame(global);
}

void WaylandConnection::went(std::uint32_t name) {
  std::erase_if(globals_, [name](const WaylandGlobal& global) { return global.name == name; });
  Q_EMIT globalWent(name);
}

bool WaylandConnection::roundTrip() {
  bool answered = false;
  const CaughtUp caughtUp(*this, [&answered] { answered = true; });
  return waitFor([&answered] { return answered; }, kAnswer);
}

bool WaylandConnection::waitFor(const std::function<bool()>& fact,
                                std::chrono::milliseconds patience) {
  const QDeadlineTimer deadline(patience);
  while (!fact() && dispatch(deadline)) {
  }
  return fact();
}

bool WaylandConnection::dispatch(QDeadlineTimer deadline) {
  wl_display* display = display_.get();
  while (!lost_ && wl_display_prepare_read(display) != 0) {
    if (wl_display_dispatch_pending(display) < 0) fail();
  }
  if (lost_) return false;
  flush();
  if (!isReadable(wl_display_get_fd(display), deadline)) {
    wl_display_cancel_read(display);
    return false;
  }
  if (wl_display_read_events(display) < 0 || wl_display_dispatch_pending(display) < 0) fail();
  return !lost_;
}

void WaylandConnection::flush() {
  if (lost_) return;
  // Why it fails otherwise is what comes to be read.
  const bool isFull = wl_display_flush(display_.get()) < 0 && errno == EAGAIN;
  if (writable_.isEnabled() != isFull) writable_.setEnabled(isFull);
}

void WaylandConnection::fail() {
  if (std::exchange(lost_, true)) return;
  readable_.setEnabled(false);
  writable_.setEnabled(false);
  const int error = wl_display_get_error(display_.get());
  const wl_interface* interface = nullptr;
  if (error == EPROTO) wl_display_get_protocol_error(display_.get(), &interface, nullptr);
  const QString where =
      interface == nullptr ? QString() : QLatin1String(" at ") + QLatin1String(interface->name);
  QTimer::singleShot(kQtsTurn, this, [error, where] {
    qCWarning(
        lcWayland,
        "the compositor has ended our connection (%s%s): icons are not covered until Calmdeck is "
        "started again",
        std::strerror(error), qPrintable(where));
  });
  QMetaObject::invokeMethod(
      this, [this] { Q_EMIT lost(); }, Qt::QueuedConnection);
}

CaughtUp::CaughtUp(WaylandConnection& connection, std::function<void()> done)
    : done_(std::move(done)), answer_(wl_display_sync(connection.display_.get())) {
  static constexpr wl_callback_listener kListener{[](void* self, wl_callback*, std::uint32_t) {
    const auto answered = std::exchange(static_cast<CaughtUp*>(self)->done_, {});
    answered();
  }};
  wl_callback_add_listener(answer_.get(), &kListener, this);
}

}  // namespace linux_desktop
