#include "desktop/linux/defaults/SettingsFile.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtGlobal>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "desktop/harness/PrivateHome.h"

namespace {

namespace fs = std::filesystem;
using linux_desktop::SettingsFile;
using platform::Array;
using platform::Value;

/// A settings file in a folder of its own, and how often the program complained about it.
class SettingsFileTest : public ::testing::Test {
 protected:
  SettingsFileTest() {
    said_ = 0;
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++said_; });
  }
  ~SettingsFileTest() override { qInstallMessageHandler(nullptr); }

  [[nodiscard]] const fs::path& file() const { return file_; }
  [[nodiscard]] fs::path folder() const { return file_.parent_path(); }
  [[nodiscard]] fs::path beside(const std::string& suffix) const { return file_.string() + suffix; }

  void write(const std::string& text) const { writeTo(file_, text); }
  static void writeTo(const fs::path& file, const std::string& text) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }
  [[nodiscard]] std::string text() const { return harness::textOf(file_); }

  /// One run of the program that sets this.
  void store(std::string_view key, Value value) const {
    SettingsFile(file_).set(key, std::move(value));
  }
  /// What the next run finds.
  [[nodiscard]] std::optional<Value> stored(std::string_view key) const {
    return SettingsFile(file_).object(key);
  }

  /// The complaints since this was last asked.
  static int complaints() { return said_.exchange(0); }
  static inline std::atomic<int> said_;
  QTemporaryDir temporary_;
  fs::path file_ = fs::path(temporary_.path().toStdString()) / "calmdeck" / "settings.json";
};

TEST_F(SettingsFileTest, ReadsWhatOtherHandsWrote) {
  const struct {
    const char* text;
    std::optional<Value> value;
  } rows[] = {
      {"9007199254740993", Value(std::int64_t{9007199254740993})},
      {R"("\u00e9\ud83c\udfa4\/")", Value("é🎤/")},
      {"[14, [true]]", Value(Array{14, Array{true}})},
      {"null", std::nullopt},
      {"1.5", std::nullopt},
      {"{\"a\": [1, {}]}", std::nullopt},
      {"[1, null]", std::nullopt},
  };
  for (const auto& row : rows) {
    write(std::string("\xEF\xBB\xBF {\"key\" :") + row.text + "}\r\n");
    EXPECT_EQ(stored("key"), row.value) << row.text;
    EXPECT_FALSE(fs::exists(beside(".broken"))) << row.text;
  }
}

TEST_F(SettingsFileTest, ForeignMembersKeepTheirValueUntilTheyAreSet) {
  const std::string before = R"({
    "nothing": null, "object": {"b": 0.1, "a": [100, {}]}, "exact": 9007199254740993,
    "mixed": [1, null], "named \"oddly\"": "\u00e9"})";
  write(before);
  store("own", true);
  SettingsFile(file()).remove("own");
  const auto parsed = [](const std::string& text) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(text));
  };
  EXPECT_NE(text(), before) << "it was not written";
  EXPECT_EQ(parsed(text()), parsed(before));

  store("object", 1);
  EXPECT_EQ(stored("object"), Value(1));
}

TEST_F(SettingsFileTest, BrokenFilesAreAllKept) {
  const std::string broken[] = {
      "",
      "[]",
      R"({"a": 1)",
      std::string(linux_desktop::kLargestSettings, ' ') + "{}",
      std::string(100, '\0'),
  };
  int number = 0;
  for (const std::string& content : broken) {
    write(content);
    const fs::path aside = beside(++number == 1 ? ".broken" : ".broken-" + std::to_string(number));
    EXPECT_EQ(stored("a"), std::nullopt);
    EXPECT_EQ(complaints(), 1) << content.substr(0, 40);
    EXPECT_TRUE(harness::textOf(aside) == content) << aside;
    EXPECT_FALSE(fs::exists(file()));
  }
}

TEST_F(SettingsFileTest, AFreshFileIsPrivateAndAnOldOneBecomesIt) {
  const auto modeOf = [](const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
  };
  store("key", 1);
  EXPECT_EQ(modeOf(file()), 0600U);
  EXPECT_EQ(modeOf(folder()), 0700U);

  ASSERT_EQ(::chmod(file().c_str(), 0644), 0);
  store("key", 2);
  EXPECT_EQ(modeOf(file()), 0600U);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder()), {}), 1);
  EXPECT_EQ(complaints(), 0);
}

TEST_F(SettingsFileTest, LinksAreKept) {
  const fs::path target = folder() / "dotfiles" / "real.json";
  writeTo(target, R"({"old": 1})");
  fs::create_symlink("hop", file());
  fs::create_symlink("dotfiles/real.json", folder() / "hop");

  store("new", 2);
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_FALSE(fs::is_symlink(target));
  EXPECT_EQ(SettingsFile(target).object("old"), Value(1));
  EXPECT_EQ(SettingsFile(target).object("new"), Value(2));

  writeTo(target, "broken");
  store("again", 3);
  EXPECT_EQ(harness::textOf(target.string() + ".broken"), "broken");
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_EQ(SettingsFile(target).object("again"), Value(3));
}

/// How often this process has written anything.
int writes() {
  std::ifstream counters("/proc/self/io");
  std::string name;
  int value = 0;
  while (counters >> name >> value && name != "syscw:") {
  }
  return value;
}

TEST_F(SettingsFileTest, OnlyChangesAreWrittenAndOnlyTheNewestOfMany) {
  store("key", 0);
  fs::create_hard_link(file(), beside(".kept"));
  {
    SettingsFile settings(file());
    settings.set("key", 0);
    settings.remove("absent");
  }
  EXPECT_TRUE(fs::equivalent(file(), beside(".kept"))) << "no other file has taken its place";
  constexpr int kChanges = 1000;
  const int before = writes();
  {
    SettingsFile settings(file());
    for (int number = 1; number <= kChanges; ++number) settings.set("key", number);
  }
  EXPECT_LT(writes() - before, kChanges) << "each change waited for the disk";
  EXPECT_EQ(stored("key"), Value(kChanges));
}

TEST_F(SettingsFileTest, AnEndByExitLosesNothing) {
  const auto endWith = [this](int number) {
    SettingsFile settings(file());
    settings.set("long", std::string(500'000, 'x'));
    settings.set("number", number);
    std::exit(1);
  };
  for (int number = 1; number <= 5; ++number) {
    EXPECT_EXIT(endWith(number), ::testing::ExitedWithCode(1), "");
    EXPECT_EQ(stored("number"), Value(number));
  }
}

TEST_F(SettingsFileTest, WhatIsNoOrdinaryFileIsNeitherWaitedForNorReplaced) {
  fs::create_directories(folder());
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
  store("key", 1);
  EXPECT_TRUE(fs::is_fifo(file()));

  fs::remove(file());
  fs::create_directory(file());
  store("key", 1);
  EXPECT_TRUE(fs::is_directory(file()));
  EXPECT_EQ(complaints(), 2);
}

TEST_F(SettingsFileTest, SettingsThatWouldNotBeReadAgainAreNotWritten) {
  store("key", 1);
  store("long", std::string(linux_desktop::kLargestSettings, 'x'));
  EXPECT_EQ(complaints(), 1);
  EXPECT_EQ(stored("key"), Value(1));
}

// --- A disk that is full or read only ---

/// The settings stand on a file system of 64 KiB, which only this process sees. Mounting takes a
/// privilege that not every machine gives, containers least of all; the cases say so and are left
/// out.
class SmallDisk : public SettingsFileTest {
 protected:
  void SetUp() override {
    fs::create_directories(folder());
    if (::unshare(CLONE_NEWNS) != 0 ||
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("none", folder().c_str(), "tmpfs", 0, "size=64k") != 0) {
      GTEST_SKIP() << "a small disk cannot be mounted here: " << std::strerror(errno);
    }
    mounted_ = true;
  }
  void TearDown() override {
    if (mounted_) ::umount(folder().c_str());
  }

  [[nodiscard]] fs::path filler() const { return folder() / "filler"; }
  void fillUp() const {
    std::ofstream stream(filler(), std::ios::binary);
    while (stream.write(std::array<char, 512>{}.data(), 512).flush()) {
    }
  }
  void remount(unsigned long flags) const {
    ASSERT_EQ(::mount("none", folder().c_str(), nullptr, MS_REMOUNT | flags, "size=64k"), 0);
  }

 private:
  bool mounted_ = false;
};

TEST_F(SmallDisk, WhatAFullDiskRefusedIsSaidOnceAFaultAndWrittenLater) {
  store("first", 1);
  {
    SettingsFile settings(file());
    for (int fault = 1; fault <= 2; ++fault) {
      settings.set("second", -fault);
      ASSERT_TRUE(harness::until([&] { return stored("second") == Value(-fault); }));
      const std::string before = text();
      fillUp();
      settings.set("second", fault);
      ASSERT_TRUE(harness::until([&] { return said_ == fault; }));
      EXPECT_EQ(std::distance(fs::directory_iterator(folder()), {}), 2) << "a draft was left";
      settings.remove("first");
      EXPECT_EQ(settings.object("second"), Value(fault));
      EXPECT_EQ(text(), before);
      fs::remove(filler());
    }
  }
  EXPECT_EQ(complaints(), 2);
  EXPECT_EQ(stored("first"), std::nullopt);
  EXPECT_EQ(stored("second"), Value(2));
}

TEST_F(SmallDisk, ABrokenFileOnAReadOnlyDiskStays) {
  write("broken");
  remount(MS_RDONLY);
  {
    SettingsFile settings(file());
    EXPECT_EQ(complaints(), 1);
    remount(0);
    settings.set("key", 1);
    EXPECT_EQ(settings.object("key"), Value(1));
  }
  EXPECT_EQ(text(), "broken");
}

}  // namespace
