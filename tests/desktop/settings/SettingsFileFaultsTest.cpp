#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "desktop/settings/SettingsFixture.h"

namespace {

namespace fs = std::filesystem;
using linux_desktop::SettingsFile;
using platform::Value;

/// The settings stand on a file system of 64 KiB, which only this process sees. Mounting takes a
/// privilege that not every machine gives, containers least of all; the cases say so and are left
/// out.
class SmallDisk : public SettingsFixture {
 protected:
  void SetUp() override {
    fs::create_directories(mountPoint());
    if (::unshare(CLONE_NEWNS) != 0 ||
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("none", mountPoint().c_str(), "tmpfs", 0, "size=64k") != 0) {
      GTEST_SKIP() << "a small disk cannot be mounted here: " << std::strerror(errno);
    }
    mounted_ = true;
  }
  void TearDown() override {
    if (mounted_) ::umount(mountPoint().c_str());
  }

  [[nodiscard]] fs::path mountPoint() const { return file().parent_path(); }
  [[nodiscard]] fs::path filler() const { return mountPoint() / "filler"; }

  void fillUp() const {
    std::ofstream stream(filler(), std::ios::binary);
    while (stream.write(std::array<char, 512>{}.data(), 512).flush()) {
    }
  }
  void remount(unsigned long flags) const {
    ASSERT_EQ(::mount("none", mountPoint().c_str(), nullptr, MS_REMOUNT | flags, "size=64k"), 0);
  }

 private:
  bool mounted_ = false;
};

TEST_F(SmallDisk, WhatAFullDiskRefusedIsWrittenLater) {
  SettingsFile settings(file());
  settings.set("first", 1);
  const std::string before = text();
  fillUp();

  EXPECT_EQ(linesSaidBy([&] {
              settings.set("second", 2);
              settings.set("third", 3);
              settings.remove("first");
            }),
            1);
  EXPECT_EQ(text(), before);
  EXPECT_EQ(settings.object("second"), Value(2));
  EXPECT_EQ(std::distance(fs::directory_iterator(mountPoint()), {}), 2) << "a draft was left";

  fs::remove(filler());
  EXPECT_EQ(linesSaidBy([&] { settings.set("second", 2); }), 0);
  EXPECT_EQ(SettingsFile(file()).object("first"), std::nullopt);
  EXPECT_EQ(SettingsFile(file()).object("second"), Value(2));
  EXPECT_EQ(SettingsFile(file()).object("third"), Value(3));

  fillUp();
  EXPECT_EQ(linesSaidBy([&] { settings.set("fourth", 4); }), 1) << "a new fault is said again";
}

TEST_F(SmallDisk, TheEndOfTheRunIsTheLastAttempt) {
  {
    SettingsFile settings(file());
    fillUp();
    EXPECT_EQ(linesSaidBy([&] { settings.set("key", 1); }), 1);
    fs::remove(filler());
  }
  EXPECT_EQ(SettingsFile(file()).object("key"), Value(1));
}

TEST_F(SmallDisk, AReadOnlyDiskKeepsItsSettings) {
  SettingsFile(file()).set("key", 1);
  remount(MS_RDONLY);
  SettingsFile settings(file());
  EXPECT_EQ(settings.object("key"), Value(1));
  EXPECT_EQ(linesSaidBy([&] { settings.set("key", 2); }), 1);
  EXPECT_EQ(settings.object("key"), Value(2));
  EXPECT_EQ(SettingsFile(file()).object("key"), Value(1));

  remount(0);
  settings.set("other", 3);
  EXPECT_EQ(SettingsFile(file()).object("key"), Value(2));
}

TEST_F(SmallDisk, ABrokenFileOnAReadOnlyDiskStays) {
  write("broken");
  remount(MS_RDONLY);
  std::optional<SettingsFile> settings;
  EXPECT_EQ(linesSaidBy([&] { settings.emplace(file()); }), 1);
  remount(0);
  settings->set("key", 1);
  EXPECT_EQ(settings->object("key"), Value(1));
  EXPECT_EQ(text(), "broken");
}

/// Root may do everything, so these run as nobody in particular.
class OrdinaryUser : public SettingsFixture {
 protected:
  void SetUp() override {
    SettingsFile(file()).set("key", 1);
    if (::geteuid() != 0) return;
    for (const fs::path& path :
         {file().parent_path().parent_path(), file().parent_path(), file()}) {
      ASSERT_EQ(::chown(path.c_str(), kNobody, kNobody), 0);
    }
    ASSERT_EQ(::seteuid(kNobody), 0);
  }
  void TearDown() override {
    ASSERT_EQ(::seteuid(::getuid()), 0);
    ::chmod(file().parent_path().c_str(), 0700);
  }

  static constexpr uid_t kNobody = 65534;
};

TEST_F(OrdinaryUser, AnUnreadableFileIsNeverTouched) {
  ASSERT_EQ(::chmod(file().c_str(), 0), 0);
  EXPECT_EQ(linesSaidBy([&] {
              SettingsFile settings(file());
              EXPECT_EQ(settings.object("key"), std::nullopt);
              settings.set("key", 2);
              EXPECT_EQ(settings.object("key"), Value(2));
            }),
            1);
  ASSERT_EQ(::chmod(file().c_str(), 0600), 0);
  EXPECT_EQ(SettingsFile(file()).object("key"), Value(1));
}

TEST_F(OrdinaryUser, AFileOrFolderWithoutTheRightToWriteIsLeftAlone) {
  const struct {
    fs::path path;
    mode_t forbidden, allowed;
  } rows[] = {{file(), 0400, 0600}, {file().parent_path(), 0500, 0700}};
  for (const auto& row : rows) {
    ASSERT_EQ(::chmod(row.path.c_str(), row.forbidden), 0);
    SettingsFile settings(file());
    EXPECT_EQ(linesSaidBy([&] { settings.set("key", 2); }), 1) << row.path;
    EXPECT_EQ(SettingsFile(file()).object("key"), Value(1));
    ASSERT_EQ(::chmod(row.path.c_str(), row.allowed), 0);
    settings.set("key", 1);
  }
}

class SettingsFileFaults : public SettingsFixture {};

TEST_F(SettingsFileFaults, WhatIsNoOrdinaryFileIsNeitherWaitedForNorReplaced) {
  fs::create_directories(file().parent_path());
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
  EXPECT_EQ(linesSaidBy([&] { SettingsFile(file()).set("key", 1); }), 1);
  EXPECT_TRUE(fs::is_fifo(file()));

  fs::remove(file());
  fs::create_directory(file());
  EXPECT_EQ(linesSaidBy([&] { SettingsFile(file()).set("key", 1); }), 1);
  EXPECT_TRUE(fs::is_directory(file()));
}

TEST_F(SettingsFileFaults, SettingsThatWouldNotBeReadAgainAreNotWritten) {
  SettingsFile settings(file());
  settings.set("key", 1);
  EXPECT_EQ(
      linesSaidBy([&] { settings.set("long", std::string(SettingsFile::kLargestFile, 'x')); }), 1);
  EXPECT_EQ(SettingsFile(file()).object("key"), Value(1));
  settings.set("long", "short");
  EXPECT_EQ(SettingsFile(file()).object("long"), Value("short"));
}

TEST_F(SettingsFileFaults, AKillAtAnyMomentLeavesAWholeFile) {
  SettingsFile(file()).set("round", 0);
  for (int round = 1; round <= 20; ++round) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const pid_t writer = ::fork();
    if (writer == 0) {
      SettingsFile settings(file());
      settings.set("round", round);
      for (int count = 0;; ++count) {
        settings.set("count", std::string(static_cast<std::size_t>(count % 5000), 'x'));
        if (::write(ends[1], "", 1) != 1) ::_exit(1);
      }
    }
    std::array<char, 1> byte{};
    for (int write = 0; write < round; ++write) ASSERT_EQ(::read(ends[0], byte.data(), 1), 1);
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    ::close(ends[0]);
    ::close(ends[1]);
    EXPECT_EQ(linesSaidBy([&] { EXPECT_EQ(SettingsFile(file()).object("round"), Value(round)); }),
              0);
  }
}

}  // namespace
