#pragma once

#include <QByteArrayList>
#include <chrono>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace linux_desktop {

/// The program of a process and its arguments as it was started; empty where nobody may know.
[[nodiscard]] QByteArrayList commandLineOf(qint64 pid);

/// Its options of these names that have a value, in order, each by its letter: "--mode fit",
/// "--mode=fit", "-m fit" and "-mfit" are four words for one.
[[nodiscard]] std::vector<std::pair<char, QByteArray>> optionsIn(
    const QByteArrayList& commandLine, const std::vector<QByteArray>& names);

/// The variables ("NAME=value") with which it was started; empty where nobody may know.
[[nodiscard]] QByteArrayList environmentOf(qint64 pid);

/// Whether it has loaded a library whose file has a name that begins so; false where nobody may
/// know.
[[nodiscard]] bool hasLoaded(qint64 pid, const QByteArray& library);

/// The processes that run a program of that name, anybody's, those first that started first.
[[nodiscard]] std::vector<qint64> processesNamed(const QByteArray& name);

/// A moment as the kernel notes when processes start: in ticks since the machine started.
using ProcessTime = qulonglong;
/// 0 where there is no such process.
[[nodiscard]] ProcessTime startOf(qint64 pid);
[[nodiscard]] ProcessTime processTimeNow();
[[nodiscard]] ProcessTime processTimeOf(std::chrono::seconds span);

/// The one at the other end of a connection, which has made the socket there; 0 where nobody may
/// know.
[[nodiscard]] qint64 processBehind(int socket);

/// Tells, once, of the end of any of some processes. The kernel reports; nothing is polled. Main
/// thread only.
class ProcessEnd {
 public:
  ProcessEnd(const std::vector<qint64>& processes, const std::function<void()>& ended);
  ~ProcessEnd();
  ProcessEnd(const ProcessEnd&) = delete;
  ProcessEnd& operator=(const ProcessEnd&) = delete;

  /// Whether there is any of them, and it may be watched.
  [[nodiscard]] bool isAwaited() const { return !watches_.empty(); }

 private:
  struct Watch;
  std::vector<std::unique_ptr<Watch>> watches_;
};

}  // namespace linux_desktop
