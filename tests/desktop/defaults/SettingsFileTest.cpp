#include <sys/stat.h>

#include <QJsonDocument>
#include <cstdint>
#include <cstdlib>

#include "desktop/defaults/SettingsFixture.h"

namespace {

namespace fs = std::filesystem;
using linux_desktop::SettingsFile;
using platform::Array;
using platform::Value;

class SettingsFileTest : public SettingsFixture {};

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

}  // namespace
