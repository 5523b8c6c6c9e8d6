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
    {"beyond a double", std::int64_t{9007199254740993}},
    {"largest", std::int64_t{INT64_MAX}},
    {"smallest", std::int64_t{INT64_MIN}},
    {"empty", ""},
    {"text", "caf\xc3\xa9 \"quoted\" \\ \n\t /\x01"},
    {"no elements", Array{}},
    {"elements", Array{14, 11, true, "x", Array{1}}},
};

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

TEST_P(DesktopContract, StoredValuesKeepTheirTypeInThisRunAndTheNext) {
  for (const auto& [key, value] : kValues) {
    EXPECT_FALSE(defaults().object(key)) << key;
    defaults().set(key, value);
    EXPECT_EQ(defaults().object(key), value) << key;
  }
  defaults().set("gone", 1);
  defaults().remove("gone");
  desk().nextRunOfTheProgram();
  for (const auto& [key, value] : kValues) EXPECT_EQ(defaults().object(key), value) << key;
  EXPECT_FALSE(defaults().object("gone"));
}

}  // namespace
}  // namespace contract
