#include "desktop/linux/updates/PackageKitQuestion.h"

#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kPackageKit = QStringLiteral("org.freedesktop.PackageKit");
const QString kPackageKitPath = QStringLiteral("/org/freedesktop/PackageKit");
const QString kTransaction = QStringLiteral("org.freedesktop.PackageKit.Transaction");

// PackageKit's PK_EXIT_ENUM_SUCCESS, PK_FILTER_ENUM_NONE (bit 1) and PK_INFO_ENUM_BLOCKED; newer
// ones keep how urgent an update is in the upper half of the last.
constexpr uint kSuccess = 1;
constexpr quint64 kNoFilter = 1U << 1U;
constexpr uint kBlocked = 9;
constexpr uint kInfoMask = 0xffff;

}  // namespace

PackageKitQuestion::PackageKitQuestion(QString package, Manner manner,
                                       std::chrono::milliseconds patience, Answered answered)
    : probe_(BusProbe::Bus::System, [this](bool answers) { takeBus(answers); }),
      package_(std::move(package)),
      manner_(manner),
      answered_(std::move(answered)) {
  patience_.setSingleShot(true);
  patience_.callOnTimeout(this, [this] { finish({UpdateAnswer::Kind::Silent}); });
  patience_.start(patience);
}

PackageKitQuestion::~PackageKitQuestion() {
  if (!transaction_.isEmpty()) bus_.send(toTransaction("Cancel"));
}

void PackageKitQuestion::takeBus(bool answers) {
  if (answers) bus_ = QDBusConnection::systemBus();
  if (!bus_.isConnected()) return finish({UpdateAnswer::Kind::Absent});
  createTransaction();
}

void PackageKitQuestion::createTransaction() {
  QDBusMessage call = busCall(kPackageKit, kPackageKitPath, kPackageKit, "CreateTransaction");
  call.setAutoStartService(true);
  ask(bus_, call, this, [this](const QDBusMessage& answer) { takeTransaction(answer); });
}

void PackageKitQuestion::takeTransaction(const QDBusMessage& answer) {
  if (isError(answer)) {
    qCInfo(lcUpdates, "PackageKit cannot be asked: %s", qPrintable(answer.errorMessage()));
    return finish({UpdateAnswer::Kind::Absent});
  }
  transaction_ = answer.arguments().value(0).value<QDBusObjectPath>().path();
  if (transaction_.isEmpty()) {
    return finish({UpdateAnswer::Kind::Failed, QStringLiteral("It speaks another language.")});
  }
  findService();
}

// Following signals of a name that others may take waits for the bus to say whose it is, and not
// every version of Qt tells who answered.
void PackageKitQuestion::findService() {
  ask(bus_, callToBus("GetNameOwner", {kPackageKit}), this, [this](const QDBusMessage& answer) {
    if (isError(answer)) return ended();
    service_ = answer.arguments().value(0).toString();
    lookForUpdates();
  });
}

void PackageKitQuestion::ended() {
  transaction_.clear();
  finish({UpdateAnswer::Kind::Failed, QStringLiteral("It ended while it looked.")});
}

void PackageKitQuestion::lookForUpdates() {
  const auto follow = [this](const char* signal, const char* slot) {
    bus_.connect(service_, transaction_, kTransaction, QString::fromLatin1(signal), this, slot);
  };
  follow("Package", SLOT(packageFound(uint, QString, QString)));
  follow("ErrorCode", SLOT(errorHappened(uint, QString)));
  follow("Finished", SLOT(transactionEnded(uint, uint)));

  auto* life =
      new QDBusServiceWatcher(service_, bus_, QDBusServiceWatcher::WatchForUnregistration, this);
  connect(life, &QDBusServiceWatcher::serviceUnregistered, this, &PackageKitQuestion::ended);

  const bool background = manner_ == Manner::InBackground;
  QDBusMessage hints = toTransaction("SetHints");
  hints << QStringList{background ? "background=true" : "background=false", "interactive=false"};
  bus_.send(hints);
  QDBusMessage call = toTransaction("GetUpdates");
  call << kNoFilter;
  ask(bus_, call, this, [this](const QDBusMessage& answer) {
    if (isError(answer)) finish({UpdateAnswer::Kind::Failed, answer.errorMessage()});
  });
}

void PackageKitQuestion::packageFound(uint kind, const QString& id, const QString& /*summary*/) {
  // "name;version;architecture;origin"
  const QStringList parts = id.split(QLatin1Char(';'));
  if (parts.size() < 2 || parts[0] != package_ || (kind & kInfoMask) == kBlocked) return;
  found_ = {UpdateAnswer::Kind::Newer, parts[1]};
}

void PackageKitQuestion::errorHappened(uint /*code*/, const QString& detail) {
  error_ = detail;
}

void PackageKitQuestion::transactionEnded(uint exit, uint /*milliseconds*/) {
  transaction_.clear();
  finish(exit == kSuccess ? found_ : UpdateAnswer{UpdateAnswer::Kind::Failed, error_});
}

QDBusMessage PackageKitQuestion::toTransaction(const QString& method) const {
  return busCall(kPackageKit, transaction_, kTransaction, method);
}

void PackageKitQuestion::finish(const UpdateAnswer& answer) {
  patience_.stop();
  const Answered answered = std::exchange(answered_, {});
  if (answered) answered(answer);
}

}  // namespace linux_desktop
