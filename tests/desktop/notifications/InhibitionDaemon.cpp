// A notification daemon that shows nothing and offers inhibitions, under the name and the maker
// that are given to it.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QSet>
#include <QStringList>
#include <QVariantMap>

namespace {

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

class Daemon final : public QDBusVirtualObject {
 public:
  Daemon(QString name, QString vendor) : name_(std::move(name)), vendor_(std::move(vendor)) {}

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    const QVariantList answer = answerTo(message);
    return bus.send(message.createReply(answer));
  }

 private:
  QVariantList answerTo(const QDBusMessage& message) {
    const QString method = message.member();
    if (method == "GetServerInformation") return {name_, vendor_, "1", "1.2"};
    if (method == "GetCapabilities") return {QStringList{"body", "inhibitions"}};
    if (method == "Get") return {QVariant::fromValue(QDBusVariant(!tickets_.isEmpty()))};
    const bool before = !tickets_.isEmpty();
    if (method == "Inhibit") tickets_.insert(++last_);
    if (method == "UnInhibit") tickets_.remove(message.arguments().value(0).toUInt());
    if (method == "EndAll") tickets_.clear();  // by hand: no program can
    if (before == tickets_.isEmpty()) tellChange();
    return method == "Inhibit" ? QVariantList{last_} : QVariantList{};
  }

  void tellChange() const {
    QDBusMessage change =
        QDBusMessage::createSignal(kPath, "org.freedesktop.DBus.Properties", "PropertiesChanged");
    change.setArguments({kName, QVariantMap{{"Inhibited", !tickets_.isEmpty()}}, QStringList()});
    QDBusConnection::sessionBus().send(change);
  }

  QString name_;
  QString vendor_;
  QSet<uint> tickets_;
  uint last_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  Daemon daemon(argv[1], argv[2]);
  QDBusConnection bus = QDBusConnection::sessionBus();
  bus.registerVirtualObject(kPath, &daemon);
  return bus.registerService(kName) ? QCoreApplication::exec() : 1;
}
