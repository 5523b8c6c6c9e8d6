#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "desktop/settings/SettingsFixture.h"

namespace {

namespace fs = std::filesystem;
using linux_desktop::SettingsFile;
using platform::Array;
using platform::Value;

class SettingsFileTest : public SettingsFixture {};

TEST_F(SettingsFileTest, WhatIsHardToWriteInJsonComesBackAsItself) {
  const Value values[] = {
      (std::int64_t{1} << 53) + 1,
      -0.5,
      std::numeric_limits<double>::denorm_min(),
      std::numeric_limits<double>::max(),
      "Präsentation 演示 🎤",
      std::string("with\0zero", 9),
      "not UTF-8: \xC3( \xFF \xED\xB2\x80 \xC3",
      "\x7f",
      Array{true, 1, 1.0, "1", Array{Array{}, 2.0}},
  };
  for (const Value& value : values) {
    SettingsFile(file()).set("key", value);
    EXPECT_EQ(SettingsFile(file()).object("key"), value) << text();
  }
}

TEST_F(SettingsFileTest, ReadsWhatOtherHandsWrote) {
  const struct {
    const char* text;
    std::optional<Value> value;
  } rows[] = {
      {"1", Value(1)},
      {"1.0", Value(1.0)},
      {"1e2", Value(100.0)},
      {"-0", Value(0)},
      {"9007199254740993", Value(std::int64_t{9007199254740993})},
      {R"("\u00e9\ud83c\udfa4\/")", Value("é🎤/")},
      {"\"caf\xE9\"", Value("caf\xE9")},
      {"[ ]", Value(Array{})},
      {"null", std::nullopt},
      {"{\"a\": [1, {}]}", std::nullopt},
      {"[1, null]", std::nullopt},
      {"9223372036854775808", std::nullopt},
      {"1e999", std::nullopt},
  };
  for (const auto& row : rows) {
    write(std::string("\xEF\xBB\xBF {\"key\" :") + row.text + "}\r\n");
    EXPECT_EQ(SettingsFile(file()).object("key"), row.value) << row.text;
    EXPECT_FALSE(fs::exists(beside(".broken"))) << row.text;
  }
}

TEST_F(SettingsFileTest, ForeignMembersKeepTheirText) {
  const std::string members[] = {
      R"("nothing": null)",
      R"("object": {"b":1.0, "a":  [1e2,{}]})",
      R"("huge": 1234567890123456789012345678901234567890)",
      R"("exact": 1.000)",
      R"("mixed": [1, null])",
      R"("named \"oddly\"": "\u00e9")",
  };
  std::string all;
  for (const std::string& member : members) all += (all.empty() ? "{" : ",\n") + member;
  write(all + "}");

  SettingsFile(file()).set("own", true);
  SettingsFile(file()).remove("own");
  for (const std::string& member : members)
    EXPECT_NE(text().find(member), std::string::npos) << member;
}

TEST_F(SettingsFileTest, AMemberOfAnotherTypeGivesWayOnlyWhenSet) {
  write(R"({"key": {"kept": 1}})");
  SettingsFile settings(file());
  EXPECT_EQ(settings.object("key"), std::nullopt);
  settings.set("key", 1);
  EXPECT_EQ(SettingsFile(file()).object("key"), Value(1));
  settings.remove("key");
  EXPECT_EQ(SettingsFile(file()).object("key"), std::nullopt);
  EXPECT_EQ(text(), "{}\n");
}

TEST_F(SettingsFileTest, BrokenFilesAreAllKept) {
  const std::string deep(100'000, '[');
  const std::string broken[] = {
      "",
      "[]",
      "true",
      R"({"a": 1)",
      R"({"a": 1,})",
      "{a: 1}",
      R"({"a": 01})",
      R"({"a": +1})",
      R"({"a": "\x"})",
      R"({"a": "\ud8"})",
      R"({"a": 1.})",
      R"({"a": tru})",
      R"({"a": 1} {})",
      R"({"a": NaN})",
      "{\"a\": \"\n\"}",
      "{\"a\": " + deep,
      std::string(SettingsFile::kLargestFile, ' ') + "{}",
      std::string(100, '\0'),
  };
  int number = 0;
  for (const std::string& content : broken) {
    write(content);
    const fs::path aside = beside(++number == 1 ? ".broken" : ".broken-" + std::to_string(number));
    std::optional<SettingsFile> settings;
    EXPECT_EQ(linesSaidBy([&] { settings.emplace(file()); }), 1) << content.substr(0, 40);
    EXPECT_EQ(textOf(aside), content);
    EXPECT_FALSE(fs::exists(file()));
    EXPECT_EQ(settings->object("a"), std::nullopt);
    settings->set("number", number);
    EXPECT_EQ(SettingsFile(file()).object("number"), Value(number));
  }
}

TEST_F(SettingsFileTest, AFreshFileIsPrivateAndAnOldOneBecomesIt) {
  const auto modeOf = [](const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
  };
  EXPECT_EQ(linesSaidBy([&] { SettingsFile(file()).set("key", 1); }), 0);
  EXPECT_EQ(modeOf(file()), 0600U);
  EXPECT_EQ(modeOf(file().parent_path()), 0700U);

  ASSERT_EQ(::chmod(file().c_str(), 0644), 0);
  SettingsFile(file()).set("key", 2);
  EXPECT_EQ(modeOf(file()), 0600U);
  EXPECT_EQ(std::distance(fs::directory_iterator(file().parent_path()), {}), 1);
}

TEST_F(SettingsFileTest, WritesOnlyWhatChanges) {
  const auto inode = [this] {
    struct stat status {};
    ::stat(file().c_str(), &status);
    return status.st_ino;
  };
  SettingsFile settings(file());
  settings.remove("absent");
  EXPECT_FALSE(fs::exists(file()));
  settings.set("key", 1);
  const auto first = inode();
  settings.set("key", 1);
  settings.remove("absent");
  EXPECT_EQ(inode(), first);
  settings.set("key", 1.0);
  EXPECT_NE(inode(), first);
}

TEST_F(SettingsFileTest, LinksAreKept) {
  const fs::path target = file().parent_path() / "dotfiles" / "real.json";
  writeTo(target, R"({"old": 1})");
  fs::create_symlink("hop", file());
  fs::create_symlink("dotfiles/real.json", file().parent_path() / "hop");

  SettingsFile(file()).set("new", 2);
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_FALSE(fs::is_symlink(target));
  EXPECT_EQ(SettingsFile(target).object("old"), Value(1));
  EXPECT_EQ(SettingsFile(target).object("new"), Value(2));

  writeTo(target, "broken");
  linesSaidBy([&] { SettingsFile(file()).set("again", 3); });
  EXPECT_EQ(textOf(target.string() + ".broken"), "broken");
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_EQ(SettingsFile(target).object("again"), Value(3));
}

TEST_F(SettingsFileTest, StandsInTheConfigurationFolder) {
  ::setenv("XDG_CONFIG_HOME", "/somewhere/config", 1);
  EXPECT_EQ(SettingsFile::standardPath(), "/somewhere/config/calmdeck/settings.json");
  ::unsetenv("XDG_CONFIG_HOME");
  ::setenv("HOME", "/somewhere", 1);
  EXPECT_EQ(SettingsFile::standardPath(), "/somewhere/.config/calmdeck/settings.json");
}

TEST_F(SettingsFileTest, ValuesThatNoSettingMayBeAbort) {
  SettingsFile settings(file());
  EXPECT_DEATH(settings.set("key", platform::Dictionary{}), "key");
  EXPECT_DEATH(settings.set("key", std::numeric_limits<double>::quiet_NaN()), "key");
}

}  // namespace
