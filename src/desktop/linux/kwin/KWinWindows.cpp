#include "desktop/linux/kwin/KWinWindows.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>
#include <chrono>
#include <span>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/kwin/KWinScript.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kService = QStringLiteral("org.kde.KWin");
const QString kScripting = QStringLiteral("/Scripting");
const QString kScriptingInterface = QStringLiteral("org.kde.kwin.Scripting");
const QString kName = QStringLiteral("org.calmdeck.Calmdeck");
const QString kPath = QStringLiteral("/org/calmdeck/KWin");
const QString kInterface = QStringLiteral("org.calmdeck.KWin");

/// Of one run, from writing the script to its answer.
constexpr std::chrono::seconds kPatience{5};

/// Where KWin can read it and nobody else can write it; empty without such a folder.
QString scriptFile() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  return folder.isEmpty() ? QString() : folder + QStringLiteral("/calmdeck-kwin.js");
}

BusInterface earOf(std::function<void(const QJsonObject& answer)> heard) {
  BusInterface interface;
  interface.name = kInterface;
  interface.methods[QStringLiteral("Done")] = {
      {QStringLiteral("s")}, {}, [heard = std::move(heard)](const QDBusMessage& call) {
        heard(QJsonDocument::fromJson(call.arguments().value(0).toString().toUtf8()).object());
        return QVariantList();
      }};
  return interface;
}

}  // namespace

std::unique_ptr<KWinWindows> KWinWindows::open() {
  BusPeer kwin(kService);
  const QDBusMessage answer = kwin.call(
      kwin.method(kScripting, kScriptingInterface, QStringLiteral("isScriptLoaded"), {kName}));
  if (isError(answer)) {
    qCDebug(lcKWin) << "no KWin that takes scripts:" << reasonOf(answer).c_str();
    return nullptr;
  }
  return std::unique_ptr<KWinWindows>(new KWinWindows());
}

KWinWindows::KWinWindows()
    : kwin_(kService),
      ear_(QDBusConnection::sessionBus(), kPath,
           {earOf([this](const QJsonObject& answer) { answered(answer); })}),
      known_{{QStringLiteral("active"), QString()}, {QStringLiteral("leftOut"), QJsonArray()}} {
  patience_.setSingleShot(true);
  patience_.setInterval(kPatience);
  QObject::connect(&patience_, &QTimer::timeout, &context_, [this] { fail("no answer came"); });
  run(QStringLiteral("look"), {});
}

void KWinWindows::hide(Done done) {
  // Until its answer says otherwise: it may come after we stopped waiting.
  isHiding_ = true;
  run(QStringLiteral("hide"), std::move(done));
}

void KWinWindows::run(const QString& what, Done done) {
  done_ = std::move(done);
  ++number_;
  patience_.start();
  if (!writeScript(what)) return;
  // One after the other: KWin 5 gives a script the place of one that it is about to forget.
  order(QStringLiteral("unloadScript"), {kName}, [this](const QDBusMessage& /*wasLoaded*/) {
    order(QStringLiteral("loadScript"), {scriptFile(), kName}, [this](const QDBusMessage& number) {
      if (number.arguments().value(0).toInt() < 0) {
        fail("it does not load the script");
        return;
      }
      order(QStringLiteral("start"), {}, [](const QDBusMessage& /*nothing*/) {});
    });
  });
}

void KWinWindows::order(const QString& method, const QVariantList& arguments,
                        std::function<void(const QDBusMessage& answer)> then) {
  ask(QDBusConnection::sessionBus(),
      kwin_.method(kScripting, kScriptingInterface, method, arguments), &context_,
      [this, then = std::move(then), number = number_](const QDBusMessage& answer) {
        if (number != number_) return;
        if (isError(answer)) {
          fail(reasonOf(answer));
        } else {
          then(answer);
        }
      });
}

bool KWinWindows::writeScript(const QString& what) {
  const QJsonObject wish{
      {QStringLiteral("what"), what},
      {QStringLiteral("number"), number_},
      {QStringLiteral("pid"), QCoreApplication::applicationPid()},
      {QStringLiteral("known"), known_},
      {QStringLiteral("service"), QDBusConnection::sessionBus().baseService()},
      {QStringLiteral("path"), kPath},
      {QStringLiteral("interface"), kInterface},
  };
  const QByteArray text =
      "const wish = " + QJsonDocument(wish).toJson(QJsonDocument::Compact) + ";\n" + kwinScript();
  const auto error = replaceWhole(scriptFile().toStdString(), text, Access::OwnerOnly);
  if (error) fail("its script cannot be written: " + error->reason);
  return !error;
}

void KWinWindows::answered(const QJsonObject& answer) {
  if (answer[QLatin1String("number")].toInt() != number_ || !patience_.isActive()) return;
  known_ = answer[QLatin1String("known")].toObject();
  isHiding_ = answer[QLatin1String("hidden")].toInt() > 0;
  if (const int staying = answer[QLatin1String("staying")].toInt(); staying > 0)
    qCWarning(lcKWin, "%d windows cannot be minimised", staying);
  // As long as something is hidden it goes on looking at what the user brings forward.
  if (!isHiding_) unload();
  finish();
}

void KWinWindows::fail(const std::string& reason) {
  qCWarning(lcKWin, "KWin does not hide or show windows: %s", reason.c_str());
  finish();
}

void KWinWindows::finish() {
  patience_.stop();
  ++number_;
  if (!done_) return;
  QMetaObject::invokeMethod(&context_, std::exchange(done_, {}), Qt::QueuedConnection);
}

void KWinWindows::unload() {
  const QDBusMessage unload =
      kwin_.method(kScripting, kScriptingInterface, QStringLiteral("unloadScript"), {kName});
  BusPeer::send(std::span(&unload, 1));
}

}  // namespace linux_desktop
