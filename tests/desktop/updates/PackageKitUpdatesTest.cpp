#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariantList>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <utility>

#include "desktop/harness/EventLoopTest.h"
#include "desktop/linux/updates/PackageKitUpdates.h"
#include "desktop/simulated/SimulatedWindows.h"
#include "platform/appkit/NSAlert.h"

namespace {

/// As much of PackageKit as looks for updates, under its name on a bus while it lives. Answers from
/// the event loop.
class PackageKitStandIn final : public QDBusVirtualObject {
 public:
  /// At which question it falls silent for ever.
  enum class Silence { Never, AtCreateTransaction, AtGetUpdates };

  explicit PackageKitStandIn(const QString& address)
      : bus_(QDBusConnection::connectToBus(address, kStandIn)),
        stranger_(QDBusConnection::connectToBus(address, kStranger)) {
    bus_.registerVirtualObject("/", this, QDBusConnection::SubPath);
    bus_.registerService(kService);
  }
  ~PackageKitStandIn() override {
    bus_.unregisterService(kService);
    bus_.unregisterObject("/", QDBusConnection::UnregisterTree);
    for (const char* each : {kStandIn, kStranger}) QDBusConnection::disconnectFromBus(each);
  }
  PackageKitStandIn(const PackageKitStandIn&) = delete;
  PackageKitStandIn& operator=(const PackageKitStandIn&) = delete;

  /// Every call, in order, with its arguments.
  QStringList calls;

  /// The updates that wait: "name;version;architecture;origin".
  QStringList packages;
  uint kind = 5;  // PackageKit's PK_INFO_ENUM_NORMAL
  Silence silence = Silence::Never;
  /// What goes wrong while it looks, in its words.
  std::optional<QString> trouble;
  /// The update that somebody else on the bus tells of, before it has its own say.
  std::optional<QString> rumour;
  /// GetUpdates itself is an error.
  bool refuses = false;

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
    const QString method = message.member();
    QStringList words{method};
    for (const QVariant& argument : message.arguments()) {
      const QStringList list = argument.toStringList();
      words << (list.isEmpty() ? QStringList{argument.toString()} : list);
    }
    calls << words.join(QLatin1Char(' '));
    if (method == "CreateTransaction") {
      if (silence == Silence::AtCreateTransaction) return true;
      const QDBusObjectPath path("/" + QString::number(++transactions_) + "_transaction");
      return bus_.send(message.createReply(QVariant::fromValue(path)));
    }
    if (method != "GetUpdates") return bus_.send(message.createReply());
    if (silence != Silence::AtGetUpdates) lookForUpdates(message);
    return true;
  }

 private:
  void lookForUpdates(const QDBusMessage& message) {
    if (refuses) {
      bus_.send(message.createErrorReply("org.example.Refused", "It is not allowed."));
      return;
    }
    const auto tell = [&](const QDBusConnection& from, const char* signal,
                          const QVariantList& arguments) {
      QDBusMessage told = QDBusMessage::createSignal(message.path(), message.interface(), signal);
      told.setArguments(arguments);
      from.send(told);
    };
    bus_.send(message.createReply());
    if (rumour) {
      tell(stranger_, "Package", {kind, *rumour, "a summary"});
      tell(stranger_, "Finished", {kSuccess, 12U});
      (void)stranger_.interface()->isServiceRegistered(kService);  // behind what is on its way
    }
    for (const QString& id : packages) tell(bus_, "Package", {kind, id, "a summary"});
    if (trouble) tell(bus_, "ErrorCode", {1U, *trouble});
    tell(bus_, "Finished", {trouble ? kFailed : kSuccess, 12U});
  }

  static constexpr const char* kStandIn = "stand-in";
  static constexpr const char* kStranger = "stranger";
  static constexpr const char* kService = "org.freedesktop.PackageKit";
  static constexpr uint kSuccess = 1;
  static constexpr uint kFailed = 2;

  QDBusConnection bus_;
  QDBusConnection stranger_;
  int transactions_ = 0;
};

using namespace std::chrono_literals;
using linux_desktop::PackageKitUpdates;
using platform::NSAlertStyle;
using Silence = PackageKitStandIn::Silence;
using testing::ElementsAre;
using testing::HasSubstr;

struct Notes final : linux_desktop::Notifier {
  std::vector<std::string> texts;
  std::optional<std::string> show(std::string_view text) override {
    texts.emplace_back(text);
    return std::nullopt;
  }
};

/// The system bus of this process, for as long as that lives: Qt opens it once.
struct SystemBus {
  harness::Process process{
      {.argv = {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"}}};
  QString address = QString::fromStdString(process.waitForLine("^unix:").value_or(""));
};
SystemBus& systemBus() {
  static SystemBus bus;
  return bus;
}

/// A home without any handler of pages, until one is made.
const std::filesystem::path& dataFolder() {
  static const QTemporaryDir folder;
  static const std::filesystem::path path = folder.path().toStdString();
  return path;
}

class PackageKitUpdatesTest : public harness::EventLoopTest<> {
 protected:
  PackageKitUpdatesTest() {
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", systemBus().address.toUtf8().constData(), 1);
    QCoreApplication::setApplicationVersion("1.4");
    for (const char* name :
         {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"})
      ::setenv(name, dataFolder().c_str(), 1);
  }

  /// What the user is told, once that is there.
  std::string answerToTheUser() {
    updates.checkForUpdates();
    EXPECT_TRUE(windows.alerts().empty()) << "it returns at once";
    if (!soon([&] { return !windows.alerts().empty(); })) return "nothing";
    return windows.alerts().back().message;
  }
  void answer(std::size_t button = 0) { windows.answerAlert(button); }
  bool asked(int times) {
    return soon([&] { return packageKit->calls.filter("GetUpdates").size() == times; });
  }

  std::optional<PackageKitStandIn> packageKit{std::in_place, systemBus().address};
  simulated::CallLog log;
  simulated::SimulatedMainLoop loop;
  simulated::SimulatedWindows windows{log, loop};
  Notes notes;
  PackageKitUpdates updates{windows, notes, {.user = 2s, .background = 2s}};
};

TEST_F(PackageKitUpdatesTest, TheUserHearsOfANewerVersionOfThisPackageAlone) {
  packageKit->packages = {"calmdeck-doc;9;all;x", "calmdeck;1.5-1;amd64;stable", "zsh;9;amd64;x"};
  EXPECT_EQ(answerToTheUser(),
            "Calmdeck 1.5-1 is available, this is 1.4. It comes with the system's updates.");
  EXPECT_THAT(packageKit->calls,
              ElementsAre("CreateTransaction", "SetHints background=false interactive=false",
                          "GetUpdates 2"));
  EXPECT_EQ(windows.alerts().back().style, static_cast<int>(NSAlertStyle::Informational));
  EXPECT_THAT(windows.alerts().back().buttons, ElementsAre("OK"))
      << "nothing here shows pages of packages";
  answer();

  for (const QStringList& others :
       {QStringList{}, QStringList{"calmdeck-doc;9;all;x", "calmdeck"}}) {
    packageKit->packages = others;
    packageKit->rumour = "calmdeck;9;amd64;x";
    EXPECT_EQ(answerToTheUser(), "The system knows of no newer version of Calmdeck than 1.4.");
    answer();
  }
  packageKit->packages = {"calmdeck;1.5-1;amd64;stable"};
  packageKit->kind = 9;
  EXPECT_EQ(answerToTheUser(), "The system knows of no newer version of Calmdeck than 1.4.")
      << "held back by the user";
  EXPECT_THAT(packageKit->calls.filter("Cancel"), testing::IsEmpty()) << "it had ended";
  EXPECT_THAT(notes.texts, ElementsAre());
}

TEST_F(PackageKitUpdatesTest, EachTroubleIsAClearAnswer) {
  packageKit->trouble = "The package lists are broken.";
  EXPECT_EQ(answerToTheUser(),
            "The system's package service could not look for updates.\n\n"
            "The package lists are broken.");
  EXPECT_EQ(windows.alerts().back().style, static_cast<int>(NSAlertStyle::Warning));
  answer();
  packageKit->trouble.reset();
  packageKit->refuses = true;
  EXPECT_THAT(answerToTheUser(), HasSubstr("\n\nIt is not allowed."));
  answer();
  for (const Silence silence : {Silence::AtCreateTransaction, Silence::AtGetUpdates}) {
    packageKit->silence = silence;
    EXPECT_EQ(answerToTheUser(),
              "The system's package service does not answer. Please try again later.");
    answer();
  }
  EXPECT_TRUE(soon([&] { return packageKit->calls.back() == "Cancel"; }))
      << "it is told that nobody waits any more";
  updates.checkForUpdates();
  ASSERT_TRUE(asked(4));
  packageKit.reset();
  ASSERT_TRUE(soon([&] { return !windows.alerts().empty(); }));
  EXPECT_THAT(windows.alerts().back().message, HasSubstr("\n\nIt ended while it looked."));
  answer();
  EXPECT_EQ(answerToTheUser(),
            "This is Calmdeck 1.4. New versions come with the system's updates.");
  answer();
}

TEST_F(PackageKitUpdatesTest, ABusThatHangsOrIsNotThereIsNotWaitedFor) {
  systemBus().process.freeze();
  EXPECT_EQ(answerToTheUser(),
            "The system's package service does not answer. Please try again later.");
  systemBus().process.thaw();
  answer();
  EXPECT_EQ(answerToTheUser(), "The system knows of no newer version of Calmdeck than 1.4.");
  answer();
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/not/there", 1);
  EXPECT_EQ(answerToTheUser(),
            "This is Calmdeck 1.4. New versions come with the system's updates.");
  answer();
}

TEST_F(PackageKitUpdatesTest, InTheBackgroundOnlyANewerVersionIsSpokenOf) {
  updates.checkInBackground();
  ASSERT_TRUE(asked(1));
  EXPECT_THAT(packageKit->calls, testing::Contains("SetHints background=true interactive=false"));
  packageKit->trouble = "x";
  updates.checkInBackground();
  ASSERT_TRUE(asked(2));
  packageKit->trouble.reset();
  packageKit->packages = {"calmdeck;2.0;amd64;x"};
  updates.checkInBackground();
  EXPECT_TRUE(soon([&] { return !notes.texts.empty(); }));
  EXPECT_THAT(notes.texts,
              ElementsAre("Calmdeck 2.0 is available, this is 1.4. It comes with the system's "
                          "updates."));
  EXPECT_TRUE(windows.alerts().empty());
}

TEST_F(PackageKitUpdatesTest, TheUsersQuestionComesBeforeTheOneInTheBackgroundAndIsAskedOnce) {
  packageKit->silence = Silence::AtGetUpdates;
  updates.checkInBackground();
  ASSERT_TRUE(asked(1));
  packageKit->silence = Silence::Never;
  packageKit->packages = {"calmdeck;2.0;amd64;x"};
  updates.checkForUpdates();
  updates.checkForUpdates();
  updates.checkInBackground();
  ASSERT_TRUE(soon([&] { return !windows.alerts().empty(); }));
  updates.checkForUpdates();
  EXPECT_EQ(packageKit->calls.filter("CreateTransaction").size(), 2);
  EXPECT_EQ(packageKit->calls.filter("Cancel").size(), 1);
  answer();
  EXPECT_NE(answerToTheUser(), "nothing");
  EXPECT_EQ(windows.alerts().size(), 1U);
  EXPECT_THAT(notes.texts, ElementsAre());
}

TEST_F(PackageKitUpdatesTest, ThePageIsOpenedByWhateverShowsSuchPages) {
  const auto applications = dataFolder() / "applications";
  const auto opened = dataFolder() / "opened";
  std::filesystem::create_directories(applications);
  std::ofstream(applications / "centre.desktop")
      << "[Desktop Entry]\nType=Application\nName=Centre\nExec=ln --symbolic %u " << opened.string()
      << "\n";
  std::ofstream(applications / "mimeapps.list")
      << "[Default Applications]\nx-scheme-handler/appstream=centre.desktop\n";
  packageKit->packages = {"calmdeck;2.0;amd64;x"};
  for (const std::size_t button : {1U, 0U}) {
    EXPECT_NE(answerToTheUser(), "nothing");
    EXPECT_THAT(windows.alerts().back().buttons, ElementsAre("Open Software Centre", "Later"));
    EXPECT_FALSE(std::filesystem::is_symlink(opened));
    answer(button);
  }
  EXPECT_TRUE(soon([&] { return std::filesystem::is_symlink(opened); }));
  EXPECT_EQ(std::filesystem::read_symlink(opened), "appstream://org.calmdeck.Calmdeck");
}

}  // namespace
