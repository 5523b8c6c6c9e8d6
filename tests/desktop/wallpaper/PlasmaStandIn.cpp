// The part of plasmashell that its scripting reaches, for two screens side by side: it answers the
// scripts that read and write without running them, and prints "read" or what the one that writes
// was given. Its argument is the picture on the second screen; the first one has a colour. A second
// argument makes that screen a slide show which shows this one instead, without a note of it where
// scripts read, as in Plasma 6. No screen takes a picture whose path has "refused" in it.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrl>
#include <array>
#include <cstdio>

namespace {

class Shell final : public QDBusVirtualObject {
 public:
  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

  bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
    const QVariant argument = call.arguments().value(0);
    if (call.member() == QLatin1String("evaluateScript"))
      return bus.send(call.createReply(evaluate(argument.toString())));
    const bool tells = call.member() == QLatin1String("wallpaper") && argument.toUInt() == kSecond;
    return tells && !slide_.isEmpty() &&
           bus.send(call.createReply(QVariantMap{{"Image", fileUrl(slide_)}}));
  }

 private:
  QString evaluate(const QString& script) {
    static const QRegularExpression wanted(QStringLiteral("const wanted = (\\{.*\\});"));
    const QRegularExpressionMatch match = wanted.match(script);
    if (match.hasMatch()) return write(match.captured(1).toUtf8());
    say("read");
    return read();
  }

  struct Screen {
    int id;
    uint number;
    int x;
    QString plugin;
    QString image;
  };

  [[nodiscard]] QString read() const {
    QByteArray lines;
    for (const Screen& screen : screens_) {
      const QJsonObject line{{"id", screen.id},         {"screen", static_cast<int>(screen.number)},
                             {"x", screen.x},           {"y", 0},
                             {"plugin", screen.plugin}, {"image", screen.image},
                             {"shown", screen.image},   {"fill", "1"},
                             {"color", "32,160,64"}};
      lines += QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
    }
    return QString::fromUtf8(lines + "OK\n");
  }

  static void say(const char* line) {
    std::puts(line);
    std::fflush(stdout);
  }

  QString write(const QByteArray& wanted) {
    say(wanted.constData());
    const QJsonObject object = QJsonDocument::fromJson(wanted).object();
    for (Screen& screen : screens_) {
      if (screen.id != object["id"].toInt() || wanted.contains("refused")) continue;
      screen.plugin = object["plugin"].toString();
      screen.image = object["image"].toString();
      return QStringLiteral("SET\n") + read();
    }
    return {};  // as after an exception
  }

  static QString fileUrl(const QString& path) { return QUrl::fromLocalFile(path).toString(); }

  static constexpr uint kSecond = 1;

  QString slide_ = QCoreApplication::arguments().value(2);
  std::array<Screen, 3> screens_{{
      {7, 0, 0, QStringLiteral("org.kde.color"), QString()},
      {9, kSecond, 1280,
       slide_.isEmpty() ? QStringLiteral("org.kde.image") : QStringLiteral("org.kde.slideshow"),
       fileUrl(QCoreApplication::arguments().at(1))},
      {11, 2, 4000, QStringLiteral("org.kde.slideshow"), QString()},
  }};
};

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  Shell shell;
  QDBusConnection bus = QDBusConnection::sessionBus();
  bus.registerVirtualObject(QStringLiteral("/PlasmaShell"), &shell);
  if (!bus.registerService(QStringLiteral("org.kde.plasmashell"))) return 1;
  std::puts("ready");
  std::fflush(stdout);
  return QCoreApplication::exec();
}
