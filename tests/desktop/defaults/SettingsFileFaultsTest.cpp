#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "desktop/defaults/SettingsFixture.h"

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

class SettingsFileFaults : public SettingsFixture {};

TEST_F(SettingsFileFaults, WhatIsNoOrdinaryFileIsNeitherWaitedForNorReplaced) {
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

TEST_F(SettingsFileFaults, SettingsThatWouldNotBeReadAgainAreNotWritten) {
  store("key", 1);
  store("long", std::string(linux_desktop::kLargestSettings, 'x'));
  EXPECT_EQ(complaints(), 1);
  EXPECT_EQ(stored("key"), Value(1));
}

}  // namespace
