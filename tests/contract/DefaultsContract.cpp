#include <map>

#include "contract/DesktopContract.h"

namespace contract {
namespace {

using platform::Array;
using platform::Value;

const std::map<std::string, Value> kValues{
    {"no", false},
    {"yes", true},
    {"one", 1},
    {"one and nothing", 1.0},
    {"fraction", 0.1},
    {"largest", std::int64_t{INT64_MAX}},
    {"smallest", std::int64_t{INT64_MIN}},
    {"vast", 1e300},
    {"empty", ""},
    {"text", "caf\xc3\xa9 \"quoted\" \\ \n\t /\x01"},
    {"no elements", Array{}},
    {"elements", Array{14, 11, true, 1.0, "x", Array{1}}},
};

TEST_P(DesktopContract, StoredValuesKeepTheirType) {
  for (const auto& [key, value] : kValues) {
    EXPECT_FALSE(defaults().object(key)) << key;
    defaults().set(key, value);
    EXPECT_EQ(defaults().object(key), value) << key;
  }
  for (const auto& [key, value] : kValues) EXPECT_EQ(defaults().object(key), value) << key;
}

TEST_P(DesktopContract, ASettingCanBeReplacedAndRemoved) {
  defaults().remove("key");
  defaults().set("key", 1);
  defaults().set("key", true);
  EXPECT_EQ(defaults().object("key"), Value(true));
  defaults().set("other", "stays");
  defaults().remove("key");
  EXPECT_FALSE(defaults().object("key"));
  EXPECT_EQ(defaults().object("other"), Value("stays"));
  EXPECT_FALSE(defaults().object(""));
}

TEST_P(DesktopContract, TheNextRunReadsWhatThisOneStored) {
  if (!has(Capability::NextRun)) return;
  for (const auto& [key, value] : kValues) defaults().set(key, value);
  defaults().set("gone", 1);
  defaults().remove("gone");
  desk().nextRunOfTheProgram();
  for (const auto& [key, value] : kValues) EXPECT_EQ(defaults().object(key), value) << key;
  EXPECT_FALSE(defaults().object("gone"));
}

TEST_P(DesktopContract, LinesArePrintedAtOnceAndWhole) {
  auto& output = desk().desktop().standardOutput();
  const std::vector<std::string> lines{"Right click!", "", "caf\xc3\xa9", std::string(3000, 'x')};
  std::vector<std::string> expected = desk().printedLines();
  for (const std::string& line : lines) {
    output.print(line);
    expected.push_back(line);
    EXPECT_EQ(desk().printedLines(), expected);
  }
}

}  // namespace
}  // namespace contract
