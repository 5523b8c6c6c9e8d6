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
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// What runs inside KWin; it takes `wish` from the line before it. The same text for KWin 5 and 6.
///
/// A window that is hidden is minimised and left out of the pager, which is the mark by which a
/// later run, of another process too, knows it again. The mark goes when the user brings the window
/// forward, for as long as the script stays loaded.
constexpr const char* kScript = R"js(
// KWin 5 has other names.
const isKWin5 = typeof workspace.clientList === "function";
const activeName = isKWin5 ? "activeClient" : "activeWindow";

function bottomToTop() {
  if (!isKWin5) return Array.from(workspace.stackingOrder);
  return workspace.clientList().slice().sort((a, b) => a.stackingOrder - b.stackingOrder);
}

const idOf = window => String(window.internalId);
const isOurs = window => window.pid === wish.pid;
// Dialogs of a window go where it goes.
const isToWorkIn = window => window.normalWindow || (window.dialog && !window.transient);
const isHidden = window => window.minimized && window.skipPager && !isOurs(window);

function isHere(window) {
  if (window.onAllDesktops) return true;
  return isKWin5 ? window.desktop === workspace.currentDesktop
                 : window.desktops.includes(workspace.currentDesktop);
}

// What this process knows beside the marks: which window was active, and which were left out of the
// pager anyhow.
const known = wish.known;

function unmark(window) {
  if (!known.leftOut.includes(idOf(window))) window.skipPager = false;
}

function hide() {
  const going = bottomToTop().filter(window =>
      isToWorkIn(window) && window.minimizable && !window.minimized && !isOurs(window));
  const active = workspace[activeName];
  if (going.includes(active)) {
    known.active = idOf(active);
  } else if (active && !active.desktopWindow && !active.dock) {
    // A panel, ours perhaps, has the keyboard from the one on top.
    known.active = going.filter(isHere).map(idOf).pop() || "";
  }
  for (const window of going) {
    if (window.skipPager) known.leftOut.push(idOf(window));
    window.skipPager = true;
    window.minimized = true;
  }
}

function activate(window, order) {
  workspace[activeName] = window;
  // That has raised it, and KWin 5 has nothing against it.
  if (isKWin5) return;
  for (const above of order.slice(order.indexOf(window) + 1)) workspace.raiseWindow(above);
}

function show() {
  // Minimised windows keep their places in it.
  const order = bottomToTop();
  const hidden = order.filter(isHidden);
  const active = workspace[activeName];
  // Panels of others cannot be minimised, nor can some dialogs.
  const isAtWork = active && !active.minimized &&
      (isOurs(active) || active.minimizable || active.dialog);
  for (const window of hidden) {
    window.minimized = false;
    unmark(window);
  }
  const here = hidden.filter(isHere);
  const last = here.find(window => idOf(window) === known.active) || here.pop();
  if (last && !isAtWork) activate(last, order);
}

if (wish.what === "hide") hide();
if (wish.what === "show") show();
const hidden = bottomToTop().filter(isHidden);
for (const window of hidden) {
  window.minimizedChanged.connect(() => {
    if (!window.minimized) unmark(window);
  });
}
// Bars and the like are windows to it, too, which nobody is to find in a task list.
const staying = wish.what !== "hide" ? [] : bottomToTop().filter(window =>
    isToWorkIn(window) && !window.skipTaskbar && !window.minimized && !isOurs(window));
callDBus(wish.service, wish.path, wish.interface, "Done",
         JSON.stringify({ number: wish.number, hidden: hidden.length, staying: staying.length,
                          known: known }));
)js";

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
      known_{{QStringLiteral("active"), QString()}, {QStringLiteral("leftOut"), QJsonArray()}},
      patience_(kPatience, [this] { fail("no answer came"); }) {
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
      "const wish = " + QJsonDocument(wish).toJson(QJsonDocument::Compact) + ";\n" + kScript;
  const auto error = replaceWhole(scriptFile().toStdString(), text, Access::OwnerOnly);
  if (error) fail("its script cannot be written: " + error->reason);
  return !error;
}

void KWinWindows::answered(const QJsonObject& answer) {
  if (answer[QLatin1String("number")].toInt() != number_ || !patience_.isActive()) return;
  known_ = answer[QLatin1String("known")].toObject();
  isHiding_ = answer[QLatin1String("hidden")].toInt() > 0;
  if (const int staying = answer[QLatin1String("staying")].toInt(); staying > 0)
    qCWarning(lcKWin, "%s", cannotBeMinimised(static_cast<std::size_t>(staying)).c_str());
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
