#include "desktop/linux/sway/SwaySocket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <QDeadlineTimer>
#include <QMetaObject>
#include <QTimer>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

constexpr std::chrono::milliseconds kPatience{500};
/// Where the whole session is gone, Qt says so within that time and ends the program.
constexpr std::chrono::milliseconds kQtsTurn{200};

const QByteArray kMagic = QByteArrayLiteral("i3-ipc");
/// Of a message: the magic, the length of its text and its type, in the machine's own order.
constexpr qsizetype kHeader = 6 + 2 * sizeof(std::uint32_t);
/// More than any session has in windows.
constexpr std::uint32_t kLongestText = 64U << 20U;

FileDescriptor connected(const QByteArray& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.isEmpty() || static_cast<std::size_t>(path.size()) >= sizeof(address.sun_path))
    return {};
  std::ranges::copy(path, std::begin(address.sun_path));
  FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!socket.isOpen()) return {};
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
    return {};
  }
  return socket;
}

/// As it is subscribed to.
QByteArray nameOf(SwaySocket::Event event) {
  switch (event) {
    case SwaySocket::Event::Workspace:
      return R"(["workspace"])";
    case SwaySocket::Event::Binding:
      return R"(["binding"])";
    case SwaySocket::Event::Input:
      break;
  }
  return R"(["input"])";
}

std::uint32_t numberAt(const QByteArray& bytes, qsizetype place) {
  std::uint32_t number = 0;
  std::memcpy(&number, bytes.constData() + place, sizeof(number));
  return number;
}

void append(QByteArray& bytes, std::uint32_t number) {
  bytes.append(reinterpret_cast<const char*>(&number), sizeof(number));
}

}  // namespace

std::unique_ptr<SwaySocket> SwaySocket::open() {
  return openAt(qgetenv("SWAYSOCK"), {});
}

std::unique_ptr<SwaySocket> SwaySocket::openI3(const QByteArray& path) {
  return openAt(path, path);
}

std::unique_ptr<SwaySocket> SwaySocket::openAt(const QByteArray& path, const QByteArray& i3) {
  FileDescriptor socket = connected(path);
  if (!socket.isOpen()) return nullptr;
  std::unique_ptr<SwaySocket> sway(new SwaySocket(std::move(socket), i3));
  if (sway->call(Question::Version).isNull()) return nullptr;
  return sway;
}

SwaySocket::SwaySocket(FileDescriptor socket, QByteArray i3)
    : i3_(std::move(i3)),
      socket_(std::move(socket)),
      readable_(socket_.get(), QSocketNotifier::Read),
      writable_(socket_.get(), QSocketNotifier::Write) {
  writable_.setEnabled(false);
  QObject::connect(&readable_, &QSocketNotifier::activated, &context_, [this] { read(); });
  QObject::connect(&writable_, &QSocketNotifier::activated, &context_, [this] { write(); });
}

bool SwaySocket::isConnected() {
  if (socket_.isOpen() || !isI3()) return socket_.isOpen();
  socket_ = connected(i3_);
  if (!socket_.isOpen()) {
    qCWarning(lcSway, "i3 does not answer: nothing is hidden or comes back");
    return false;
  }
  readable_.setSocket(socket_.get());
  writable_.setSocket(socket_.get());
  readable_.setEnabled(true);
  for (const Listener& listener : listeners_) subscribe(listener.event);
  return true;
}

void SwaySocket::ask(Question question, const QByteArray& text, Answered answered) {
  if (!isConnected()) {
    if (answered) deliver([answered = std::move(answered)] { answered({}); });
    return;
  }
  waiting_.push_back({[this, answered = std::move(answered)](const QJsonDocument& answer) {
    if (answered) deliver([answered, answer] { answered(answer); });
  }});
  send(question, text);
}

QJsonDocument SwaySocket::call(Question question, const QByteArray& text) {
  if (!isConnected() || isLate()) return {};
  const auto answer = std::make_shared<std::optional<QJsonDocument>>();
  waiting_.push_back({[answer](const QJsonDocument& came) { *answer = came; }});
  send(question, text);
  const QDeadlineTimer deadline(kPatience);
  while (!*answer && socket_.isOpen() && !deadline.hasExpired()) {
    const short wanted = unsent_.isEmpty() ? POLLIN : POLLIN | POLLOUT;
    pollfd poll{socket_.get(), wanted, 0};
    ::poll(&poll, 1, static_cast<int>(deadline.remainingTime()) + 1);
    if ((poll.revents & POLLOUT) != 0) write();
    if (socket_.isOpen() && (poll.revents & ~POLLOUT) != 0) read();
  }
  if (*answer) return **answer;
  if (!waiting_.empty()) waiting_.back().isOverdue = true;
  return {};
}

std::optional<QJsonDocument> SwaySocket::carryOut(const QByteArray& commands) {
  if (socket_.isOpen() && isLate()) {
    command(commands);
    return std::nullopt;
  }
  const QJsonDocument answer = call(Question::Command, commands);
  return answer.isNull() && socket_.isOpen() ? std::nullopt : std::optional(answer);
}

void SwaySocket::listen(Event event, Happened happened) {
  listeners_.push_back({event, std::move(happened)});
  subscribe(event);
}

void SwaySocket::subscribe(Event event) {
  ask(Question::Subscribe, nameOf(event), {});
}

void SwaySocket::send(Question question, const QByteArray& text) {
  unsent_ += kMagic;
  append(unsent_, static_cast<std::uint32_t>(text.size()));
  append(unsent_, static_cast<std::uint32_t>(question));
  unsent_ += text;
  write();
}

void SwaySocket::write() {
  while (!unsent_.isEmpty()) {
    const ssize_t sent = ::send(socket_.get(), unsent_.constData(),
                                static_cast<std::size_t>(unsent_.size()), MSG_NOSIGNAL);
    if (sent >= 0) {
      unsent_.remove(0, sent);
    } else if (errno != EINTR) {
      // What else is wrong, reading tells.
      break;
    }
  }
  writable_.setEnabled(!unsent_.isEmpty());
}

void SwaySocket::read() {
  std::array<char, 16384> bytes{};
  const ssize_t count = ::recv(socket_.get(), bytes.data(), bytes.size(), 0);
  if (count > 0) {
    unread_.append(bytes.data(), count);
    while (takeMessage()) {
    }
  } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
    fail(count == 0 ? "it closed the connection" : std::strerror(errno));
  }
}

bool SwaySocket::takeMessage() {
  if (unread_.size() < kHeader) return false;
  const std::uint32_t length = numberAt(unread_, kMagic.size());
  if (!unread_.startsWith(kMagic) || length > kLongestText) {
    fail("it does not speak the protocol");
    return false;
  }
  if (unread_.size() < kHeader + static_cast<qsizetype>(length)) return false;
  const std::uint32_t type = numberAt(unread_, kHeader - sizeof(std::uint32_t));
  const QByteArray text = unread_.mid(kHeader, length);
  unread_.remove(0, kHeader + static_cast<qsizetype>(length));
  arrived(type, text);
  return true;
}

void SwaySocket::arrived(std::uint32_t type, const QByteArray& text) {
  const QJsonDocument json = QJsonDocument::fromJson(text);
  constexpr std::uint32_t kEvents = 0x80000000;
  if ((type & kEvents) != 0) {
    for (const Listener& listener : listeners_) {
      if (static_cast<std::uint32_t>(listener.event) != type) continue;
      deliver([happened = listener.happened, event = json.object()] { happened(event); });
    }
    return;
  }
  if (waiting_.empty()) return;
  const Waiting waiting = std::move(waiting_.front());
  waiting_.pop_front();
  waiting.answered(json);
}

void SwaySocket::deliver(std::function<void()> what) {
  QMetaObject::invokeMethod(&context_, std::move(what), Qt::QueuedConnection);
}

void SwaySocket::fail(const char* reason) {
  if (!isI3()) {
    QTimer::singleShot(kQtsTurn, &context_, [text = QByteArray(reason)] {
      qCWarning(lcSway, "sway is gone (%s): nothing is hidden, and shortcuts do not fire",
                text.constData());
    });
  }
  readable_.setEnabled(false);
  writable_.setEnabled(false);
  socket_.reset();
  unread_.clear();
  unsent_.clear();
  for (const Waiting& waiting : std::exchange(waiting_, {})) waiting.answered({});
}

}  // namespace linux_desktop
