#include "desktop/linux/files/Processes.h"

#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QSocketNotifier>
#include <algorithm>
#include <ctime>

#include "desktop/linux/files/FileDescriptor.h"

namespace linux_desktop {
namespace {

QByteArray read(qint64 pid, const char* what) {
  QFile file(QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1String(what)));
  return pid > 0 && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArrayList wordsOf(qint64 pid, const char* what) {
  QByteArrayList words = read(pid, what).split('\0');
  if (words.last().isEmpty()) words.removeLast();
  return words;
}

ProcessTime ticksASecond() {
  return static_cast<ProcessTime>(::sysconf(_SC_CLK_TCK));
}

}  // namespace

// See proc(5).
ProcessTime startOf(qint64 pid) {
  constexpr qsizetype kStart = 19;  // counted from behind the program's name, which may have blanks
  const QByteArray stat = read(pid, "stat");
  return stat.mid(stat.lastIndexOf(')') + 2).split(' ').value(kStart).toULongLong();
}

ProcessTime processTimeNow() {
  constexpr ProcessTime kNanoseconds = 1'000'000'000;
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  return processTimeOf(std::chrono::seconds(now.tv_sec)) +
         static_cast<ProcessTime>(now.tv_nsec) * ticksASecond() / kNanoseconds;
}

ProcessTime processTimeOf(std::chrono::seconds span) {
  return static_cast<ProcessTime>(span.count()) * ticksASecond();
}

qint64 processBehind(int socket) {
  ucred peer{};
  socklen_t size = sizeof(peer);
  return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 ? peer.pid : 0;
}

QByteArrayList commandLineOf(qint64 pid) {
  return wordsOf(pid, "cmdline");
}

std::vector<std::pair<char, QByteArray>> optionsIn(const QByteArrayList& commandLine,
                                                   const std::vector<QByteArray>& names) {
  std::vector<std::pair<char, QByteArray>> options;
  for (qsizetype i = 1; i < commandLine.size(); ++i) {
    const QByteArray& word = commandLine[i];
    for (const QByteArray& name : names) {
      if (word == "--" + name || word == '-' + name.first(1)) {
        options.emplace_back(name[0], commandLine.value(++i));
      } else if (word.startsWith("--" + name + '=')) {
        options.emplace_back(name[0], word.mid(name.size() + 3));
      } else if (word.startsWith('-' + name.first(1))) {
        options.emplace_back(name[0], word.mid(2));
      } else {
        continue;
      }
      break;
    }
  }
  return options;
}

QByteArrayList environmentOf(qint64 pid) {
  return wordsOf(pid, "environ");
}

bool hasLoaded(qint64 pid, const QByteArray& library) {
  return read(pid, "maps").contains('/' + library);
}

std::vector<qint64> processesNamed(const QByteArray& name) {
  std::vector<std::pair<ProcessTime, qint64>> found;
  for (const QString& folder : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
    const qint64 pid = folder.toLongLong();
    if (pid > 0 && read(pid, "comm").trimmed() == name) found.emplace_back(startOf(pid), pid);
  }
  std::ranges::sort(found);
  std::vector<qint64> pids;
  pids.reserve(found.size());
  for (const auto& each : found) pids.push_back(each.second);
  return pids;
}

struct ProcessEnd::Watch {
  Watch(FileDescriptor process, const std::function<void()>& ended)
      : process_(std::move(process)), end_(process_.get(), QSocketNotifier::Read) {
    QObject::connect(&end_, &QSocketNotifier::activated, &end_, [this, ended] {
      end_.setEnabled(false);
      ended();
    });
  }
  FileDescriptor process_;
  QSocketNotifier end_;
};

ProcessEnd::ProcessEnd(const std::vector<qint64>& processes, const std::function<void()>& ended) {
  for (const qint64 pid : processes) {
    FileDescriptor process(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
    if (process.get() >= 0) watches_.push_back(std::make_unique<Watch>(std::move(process), ended));
  }
}

ProcessEnd::~ProcessEnd() = default;

}  // namespace linux_desktop
