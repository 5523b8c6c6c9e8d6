#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <chrono>
#include <climits>
#include <functional>
#include <string>

class QDBusPendingCallWatcher;

namespace linux_desktop {

/// How long anything on a bus is waited for before it counts as hanging.
inline constexpr std::chrono::milliseconds kBusPatience{500};
/// The limit, in milliseconds, of a question that may stay open for ever. Such an answer says that
/// a peer goes on; when the peer ends instead, the bus answers in its place.
inline constexpr int kNoLimit = INT_MAX;

/// A method call that never starts a service.
[[nodiscard]] QDBusMessage busCall(const QString& service, const QString& path,
                                   const QString& interface, const QString& method,
                                   const QVariantList& arguments = {});
/// One that the bus itself answers.
[[nodiscard]] QDBusMessage callToBus(const QString& method, const QVariantList& arguments = {});

/// Sends `call` and returns at once. `answered` gets the reply or the error, from the event loop or
/// from the question's own waitForFinished(), unless `asker` is gone by then. The question deletes
/// itself after that. `limit` is in milliseconds.
QDBusPendingCallWatcher* ask(const QDBusConnection& bus, const QDBusMessage& call, QObject* asker,
                             std::function<void(const QDBusMessage& answer)> answered,
                             int limit = kNoLimit);

[[nodiscard]] bool isError(const QDBusMessage& answer);
/// True when no answer came within the question's limit.
[[nodiscard]] bool ranOut(const QDBusMessage& answer);
/// What went wrong, in one line.
[[nodiscard]] std::string reasonOf(const QDBusMessage& error);

}  // namespace linux_desktop
