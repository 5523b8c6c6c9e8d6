#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QString>
#include <functional>
#include <map>
#include <tuple>
#include <vector>

namespace linux_desktop {

/// A D-Bus structure: `kFields` is a tuple of pointers to its members, in their order on the bus.
template <class T>
concept BusStructure = requires {
  T::kFields;
};

template <BusStructure T>
QDBusArgument& operator<<(QDBusArgument& out, const T& structure) {
  out.beginStructure();
  std::apply([&](auto... field) { (out << ... << (structure.*field)); }, T::kFields);
  out.endStructure();
  return out;
}

template <BusStructure T>
const QDBusArgument& operator>>(const QDBusArgument& in, T& structure) {
  in.beginStructure();
  std::apply([&](auto... field) { (in >> ... >> (structure.*field)); }, T::kFields);
  in.endStructure();
  return in;
}

/// Makes structures, and lists of them, known to QtDBus; again does no harm.
template <class... Types>
void registerBusTypes() {
  (qDBusRegisterMetaType<Types>(), ...);
}

/// What one interface of ours offers on the bus, as tables. Types are D-Bus signatures, one for
/// each argument.
struct BusInterface {
  using Types = std::vector<QString>;
  struct Method {
    Types taken;
    Types returned;
    /// Returns the reply's arguments.
    std::function<QVariantList(const QDBusMessage& call)> answer;
  };
  struct Property {
    QString type;
    std::function<QVariant()> read;
  };

  QString name;
  std::map<QString, Method> methods;
  std::map<QString, Property> properties;
  /// Those that may be emitted, with their arguments.
  std::map<QString, Types> emitted;
};

/// One object on the bus that answers for its interfaces and for their read-only properties. It is
/// there as long as it lives. Main thread only.
///
/// QtDBus could export a QObject by itself, but then a property's reader never learns who asked,
/// and who asks is how we come to know the program that shows our icon.
class BusObject final : public QDBusVirtualObject {
 public:
  /// `called` is told the bus name of the caller before each call that is answered.
  BusObject(QDBusConnection connection, QString path, std::vector<BusInterface> interfaces,
            std::function<void(const QString& caller)> called = {});
  ~BusObject() override;

  /// Of the first interface.
  void emitSignal(const QString& name, const QVariantList& arguments = {}) const;
  /// Tells who listens what a property of that interface, which has it, reads now.
  void emitPropertyChanged(const QString& interface, const QString& property) const;

  [[nodiscard]] QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  /// Null where we have none of that name; for no name the first.
  [[nodiscard]] const BusInterface* interfaceOf(const QString& name) const;

  QDBusConnection connection_;
  QString path_;
  std::vector<BusInterface> interfaces_;
  std::function<void(const QString&)> called_;
};

/// Asks for the program's name on a session bus, so that desktop services can find it there.
/// Nothing depends on the answer: no bus, a bus that hangs and a name that is taken are each a
/// debug line. Never waits. The name is held until the connection closes.
void requestBusName(const QDBusConnection& bus,
                    const QString& name = QStringLiteral("org.calmdeck.Calmdeck"));

}  // namespace linux_desktop
