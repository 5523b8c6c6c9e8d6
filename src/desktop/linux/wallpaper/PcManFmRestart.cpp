#include "desktop/linux/wallpaper/PcManFmRestart.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <QCoreApplication>
#include <QFile>
#include <QPointer>
#include <QProcess>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <utility>

#include "desktop/linux/files/FileDescriptor.h"
#include "desktop/linux/files/IniFile.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

// A large photograph takes a busy machine three seconds.
constexpr std::chrono::seconds kLate{5};

sockaddr_un addressOf(const QByteArray& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  // A path that is too long is cut off, and nobody listens there.
  qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
  return address;
}

/// Where the running pcmanfm of this display listens for the arguments of its further starts.
QString pcManFmSocket() {
  const QString display = qEnvironmentVariable("DISPLAY");
  const auto colon = display.lastIndexOf(QLatin1Char(':'));
  const QString number = display.mid(colon + 1).section(QLatin1Char('.'), 0, 0);
  QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
  if (folder.isEmpty()) {
    folder = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  }
  return QStringLiteral("%1/pcmanfm-socket-%2-%3")
      .arg(folder, display.left(std::max(colon, decltype(colon){0})), number);
}

/// False: nobody listens, or too many others wait already.
bool send(const FileDescriptor& connection, const QByteArray& text) {
  const sockaddr_un address = addressOf(QFile::encodeName(pcManFmSocket()));
  return ::connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
             0 &&
         ::send(connection.get(), text.constData(), static_cast<std::size_t>(text.size()),
                MSG_NOSIGNAL) == text.size() &&
         ::shutdown(connection.get(), SHUT_WR) == 0;
}

}  // namespace

QString profileIn(const QByteArrayList& commandLine) {
  for (const auto& [letter, profile] : optionsIn(commandLine, {"profile"})) {
    if (!profile.isEmpty()) return QFile::decodeName(profile);
  }
  return QStringLiteral("default");
}

std::optional<std::string> tellPcManFm(const QStringList& options, QObject& context,
                                       std::function<void()> read) {
  // pcmanfm 1.3: a folder, the number of the screen, then its arguments, one a line.
  const QStringList lines = QStringList{QStringLiteral("/"), QStringLiteral("0")} + options;
  auto connection = std::make_shared<FileDescriptor>(
      ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!send(*connection, QFile::encodeName(lines.join(QLatin1Char('\n'))) + '\n')) {
    return "pcmanfm cannot be reached.";
  }
  // The reader hangs up when it has read everything.
  auto* end = new QSocketNotifier(connection->get(), QSocketNotifier::Read, &context);
  QObject::connect(end, &QSocketNotifier::activated, end,
                   [end, connection, read = std::move(read)] {
                     end->setEnabled(false);
                     end->deleteLater();
                     read();
                   });
  QTimer::singleShot(kLate, end, [] {
    qCWarning(lcWallpaper, "pcmanfm does not answer; it gets its picture when it goes on.");
  });
  return std::nullopt;
}

namespace {

/// What a loaded machine may take to end or to start the program.
constexpr std::chrono::seconds kLimit{5};

const QString kOff = QStringLiteral("--desktop-off");
const QString kOn = QStringLiteral("--desktop");

}  // namespace

PcManFmRestart& PcManFmRestart::instance() {
  static QPointer<PcManFmRestart> present;
  if (!present) present = new PcManFmRestart(QCoreApplication::instance());
  return *present;
}

PcManFmRestart::PcManFmRestart(QObject* parent)
    : QObject(parent), limit_(kLimit, [this] { giveUp(); }) {}

void PcManFmRestart::found(qint64 pid) {
  QByteArrayList commandLine = commandLineOf(pid);
  if (phase_ == Phase::Ending || phase_ == Phase::Starting || commandLine.isEmpty()) return;
  rest();
  pid_ = pid;
  commandLine_ = std::move(commandLine);
}

std::optional<std::string> PcManFmRestart::begin() {
  again_ = phase_ == Phase::Starting;
  if (phase_ == Phase::Ending || phase_ == Phase::Starting) return std::nullopt;
  // Not from inside the watch that this ends.
  end_.emplace(std::vector{pid_}, [this] { QTimer::singleShot(0, this, &PcManFmRestart::ended); });
  if (!end_->isAwaited()) return "pcmanfm cannot be watched: it is not started again.";
  // Whoever ends the desktop has to be there to start it again, and an order is carried out however
  // late it is read: so first the program must be seen to read what it has already done.
  if (auto reason = tellPcManFm({kOn}, *this, [this] { takeDesktopOff(); })) {
    rest();
    return reason;
  }
  phase_ = Phase::Ending;
  return std::nullopt;
}

void PcManFmRestart::takeDesktopOff() {
  if (phase_ != Phase::Ending) return;
  const auto reason = tellPcManFm({kOff}, *this, [this] {
    // Where it still has other windows it stays, and takes this.
    static_cast<void>(tellPcManFm({kOn}, *this, [] {}));
    if (phase_ == Phase::Ending) limit_.start();
  });
  // Where it has just ended, its end is told as well.
  if (reason) limit_.start();
}

void PcManFmRestart::ended() {
  if (phase_ != Phase::Ending) return;
  end_.reset();
  for (const auto& [file, text] : std::exchange(texts_, {})) {
    if (const auto reason = putIniText(file, text)) qCWarning(lcWallpaper, "%s", reason->c_str());
  }
  QProcess program;
  program.setProgram(QFile::decodeName(commandLine_.first()));
  QStringList arguments;
  for (const QByteArray& word : commandLine_.mid(1)) arguments.push_back(QFile::decodeName(word));
  program.setArguments(arguments);
  program.setStandardInputFile(QProcess::nullDevice());
  program.setStandardOutputFile(QProcess::nullDevice());
  program.setStandardErrorFile(QProcess::nullDevice());
  if (!program.startDetached(&pid_)) {
    qCWarning(lcWallpaper).noquote() << "pcmanfm does not start again:" << program.errorString();
    rest();
    return;
  }
  phase_ = Phase::Starting;
  limit_.start();
  socket_ = std::make_unique<FileWatch>(QStringList{pcManFmSocket()}, [this] { started(); });
  started();
}

void PcManFmRestart::started() {
  if (phase_ != Phase::Starting || !QFile::exists(pcManFmSocket())) return;
  phase_ = Phase::Drawing;
  const bool again = std::exchange(again_, false);
  // Not from inside the watch that this ends.
  QTimer::singleShot(0, this, [this, again] {
    socket_.reset();
    const auto reason = again ? begin() : std::nullopt;
    if (reason) qCWarning(lcWallpaper, "%s", reason->c_str());
  });
}

void PcManFmRestart::giveUp() {
  if (phase_ == Phase::Starting) qCWarning(lcWallpaper, "pcmanfm did not come back.");
  rest();
}

void PcManFmRestart::rest() {
  phase_ = Phase::Idle;
  again_ = false;
  texts_.clear();
  limit_.stop();
  end_.reset();
  socket_.reset();
}

}  // namespace linux_desktop
