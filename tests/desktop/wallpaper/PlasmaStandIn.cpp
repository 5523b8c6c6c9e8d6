// The part of plasmashell that its scripting reaches, for screens side by side: it answers the
// scripts that read and write without running them, and prints "asked" or what the one that writes
// was given. Its argument is the picture on the second screen, and on a third; the first has a
// colour. A second argument makes that screen a slide show which shows this one instead, without a
// note of it where scripts read, as in Plasma 6. No screen takes a picture whose path has "refused"
// in it. STAND_IN_LEAVES tells what panels leave of a screen, as "NAME X Y WIDTH HEIGHT". With
// STAND_IN_STOPS set it is stopped once it has its name, as one that is still starting,
// and goes on with SIGCONT.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRect>
#include <QRegularExpression>
#include <QUrl>
#include <array>
#include <csignal>
#include <cstdio>

namespace {

void say(const char* line) {
  std::puts(line);
  std::fflush(stdout);
}

class Shell final : public QDBusVirtualObject {
 public:
  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

  bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
    if (call.member() == QLatin1String("evaluateScript")) {
      const QString script = call.arguments().value(0).toString();
      return bus.send(call.createReply(evaluate(script)));
    }
    if (call.member() == QLatin1String("availableScreenRect"))
      return bus.send(call.createReply(leftOf(call.arguments().value(0).toString())));
    return call.member() == QLatin1String("wallpaper") && !slide_.isEmpty() &&
           bus.send(call.createReply(QVariantMap{{"Image", fileUrl(slide_)}}));
  }

 private:
  QString evaluate(const QString& script) {
    static const QRegularExpression wanted(QStringLiteral("const wanted = (\\{.*\\});"));
    const QRegularExpressionMatch match = wanted.match(script);
    if (match.hasMatch()) return write(match.captured(1).toUtf8());
    say("asked");
    return read();
  }

  [[nodiscard]] QString read() const {
    QByteArray lines;
    for (const QJsonObject& screen : screens_)
      lines += QJsonDocument(screen).toJson(QJsonDocument::Compact) + '\n';
    return QString::fromUtf8(lines + "OK\n");
  }

  QString write(const QByteArray& wanted) {
    say(wanted.constData());
    const QJsonObject object = QJsonDocument::fromJson(wanted).object();
    for (QJsonObject& screen : screens_) {
      if (screen["id"] != object["id"] || wanted.contains("refused")) continue;
      screen["plugin"] = object["plugin"];
      screen["image"] = screen["shown"] = object["image"];
      return QStringLiteral("SET\n") + read();
    }
    return {};  // as after an exception
  }

  static QRect leftOf(const QString& screen) {
    const QStringList told = qEnvironmentVariable("STAND_IN_LEAVES").split(' ');
    if (told.value(0) != screen) return {};
    return {told.value(1).toInt(), told.value(2).toInt(), told.value(3).toInt(),
            told.value(4).toInt()};
  }

  static QString fileUrl(const QString& path) { return QUrl::fromLocalFile(path).toString(); }
  static QJsonObject screen(int number, int x, const char* plugin, const QString& image) {
    return {{"id", 7 + 2 * number}, {"screen", number}, {"x", x},      {"y", 0},
            {"plugin", plugin},     {"image", image},   {"fill", "1"}, {"color", "32,160,64"},
            {"shown", image}};
  }

  QString slide_ = QCoreApplication::arguments().value(2);
  QString file_ = fileUrl(QCoreApplication::arguments().value(1));
  std::array<QJsonObject, 3> screens_{
      screen(0, 0, "org.kde.color", {}),
      screen(1, 1280, slide_.isEmpty() ? "org.kde.image" : "org.kde.slideshow", file_),
      screen(2, 2560, "org.kde.image", file_)};
};

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  Shell shell;
  QDBusConnection bus = QDBusConnection::sessionBus();
  for (const char* path : {"/PlasmaShell", "/StrutManager"})
    bus.registerVirtualObject(QLatin1String(path), &shell);
  if (!bus.registerService(QStringLiteral("org.kde.plasmashell"))) return 1;
  say("ready");
  if (qEnvironmentVariableIsSet("STAND_IN_STOPS")) std::raise(SIGSTOP);
  return QCoreApplication::exec();
}
