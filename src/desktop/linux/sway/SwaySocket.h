#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>
#include <algorithm>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/files/FileDescriptor.h"
#include "desktop/linux/files/Processes.h"

namespace linux_desktop {

/// The connection to sway, or to i3, by which programs give it commands. When sway's ends, that is
/// one line on standard error, and all questions fail from then on; i3, which ends its connections
/// when it is told to start anew, is looked for again at the next question. Main thread only.
class SwaySocket {
 public:
  /// The protocol's numbers.
  enum class Question : std::uint32_t {
    Command = 0,
    Subscribe = 2,
    Outputs = 3,
    Tree = 4,
    Version = 7,
    Config = 9,
    Inputs = 100
  };
  enum class Event : std::uint32_t {
    Workspace = 0x80000000,
    Binding = 0x80000005,
    Input = 0x80000015
  };
  /// Null is no answer.
  using Answered = std::function<void(const QJsonDocument& answer)>;
  using Happened = std::function<void(const QJsonObject& event)>;

  /// Null where no sway answers that $SWAYSOCK names, within half a second.
  [[nodiscard]] static std::unique_ptr<SwaySocket> open();
  /// The same of an i3 that listens at `path`.
  [[nodiscard]] static std::unique_ptr<SwaySocket> openI3(const QByteArray& path);

  /// The process that answers; 0 where nobody may know.
  [[nodiscard]] qint64 process() const { return processBehind(socket_.get()); }
  [[nodiscard]] bool isI3() const { return !i3_.isEmpty(); }

  /// Returns at once. `answered` is called from the event loop, unless this is gone by then.
  void ask(Question question, const QByteArray& text, Answered answered);
  /// Waits for half a second at most, and not at all while sway has not caught up with an earlier
  /// question that was waited for.
  [[nodiscard]] QJsonDocument call(Question question, const QByteArray& text = {});
  /// Has commands carried out, also where sway is late, which is no failure: it does as it is told
  /// when it gets there. None: what comes of them is not known yet. Waits as call() does.
  [[nodiscard]] std::optional<QJsonDocument> carryOut(const QByteArray& commands);
  /// Sends commands and looks at no answer.
  void command(const QByteArray& commands) { ask(Question::Command, commands, {}); }
  /// Whoever wants a kind of event. Called from the event loop.
  void listen(Event event, Happened happened);

 private:
  struct Waiting {
    Answered answered;
    bool isOverdue = false;
  };
  struct Listener {
    Event event;
    Happened happened;
  };

  SwaySocket(FileDescriptor socket, QByteArray i3);
  [[nodiscard]] bool isLate() const { return std::ranges::any_of(waiting_, &Waiting::isOverdue); }
  [[nodiscard]] static std::unique_ptr<SwaySocket> openAt(const QByteArray& path,
                                                          const QByteArray& i3);
  /// Whether the connection stands, anew if need be.
  [[nodiscard]] bool isConnected();
  void subscribe(Event event);
  void send(Question question, const QByteArray& text);
  void write();
  void read();
  [[nodiscard]] bool takeMessage();
  void arrived(std::uint32_t type, const QByteArray& text);
  void deliver(std::function<void()> what);
  void fail(const char* reason);

  /// Where i3 listens; empty for sway.
  QByteArray i3_;
  FileDescriptor socket_;
  QByteArray unsent_;
  QByteArray unread_;
  std::deque<Waiting> waiting_;
  std::vector<Listener> listeners_;
  QObject context_;
  QSocketNotifier readable_;
  QSocketNotifier writable_;
};

}  // namespace linux_desktop
