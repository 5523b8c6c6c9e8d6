#include "desktop/linux/process/UserSession.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QVariantMap>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kPath = QStringLiteral("/org/calmdeck/Calmdeck");
const QString kOwn = QStringLiteral("org.calmdeck.Calmdeck");
const QString kPresentationMode = QStringLiteral("PresentationMode");

}  // namespace

void UserSession::joinBus(const QDBusConnection& bus) {
  if (bus.isConnected()) object_.emplace(bus, kPath, std::vector{application(), own()});
}

void UserSession::modeDidChange(bool isOn) {
  isModeOn_ = isOn;
  if (object_) object_->emitPropertyChanged(kOwn, kPresentationMode);
}

BusInterface UserSession::application() {
  const auto show = [this](const QDBusMessage& call) {
    return later(call.arguments().value(call.arguments().size() - 1), [this] { reopen(); });
  };
  const auto act = [this](const QDBusMessage& call) {
    const QString action = call.arguments().value(0).toString();
    return later(call.arguments().value(2), [this, action] { perform(action); });
  };
  return {.name = QStringLiteral("org.freedesktop.Application"),
          .methods = {{"Activate", {{"a{sv}"}, {}, show}},
                      // There is nothing to open: it shows itself.
                      {"Open", {{"as", "a{sv}"}, {}, show}},
                      {"ActivateAction", {{"s", "av", "a{sv}"}, {}, act}}},
          .properties = {},
          .emitted = {}};
}

BusInterface UserSession::own() {
  // dbus-send knows no dictionaries of variants.
  const auto act = [this](const QDBusMessage& call) {
    const QString action = call.arguments().value(0).toString();
    return later({}, [this, action] { perform(action); });
  };
  return {.name = kOwn,
          .methods = {{"Perform", {{"s"}, {}, act}}},
          .properties = {{kPresentationMode, {"b", [this] { return isModeOn_; }}},
                         {QStringLiteral("Version"),
                          {"s", [] { return QCoreApplication::applicationVersion(); }}}},
          .emitted = {}};
}

// What is shown may be a dialog that runs a loop of its own; who asked must not wait for that.
QVariantList UserSession::later(const QVariant& platformData, std::function<void()> work) {
  const auto data = qdbus_cast<QVariantMap>(platformData);
  const QByteArray token = data.value(QStringLiteral("activation-token")).toString().toUtf8();
  const auto withToken = [token, work = std::move(work)] {
    // Qt takes it from there with the next window that is to be activated.
    if (!token.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", token);
    work();
  };
  QMetaObject::invokeMethod(&asked_, withToken, Qt::QueuedConnection);
  return {};
}

void UserSession::reopen() {
  if (client_ != nullptr) client_->applicationShouldReopen();
}

void UserSession::perform(const QString& action) {
  if (client_ != nullptr && !client_->applicationShouldPerform(action.toStdString()))
    qCWarning(lcProcess, "there is no action \"%s\"", qUtf8Printable(action));
}

}  // namespace linux_desktop
