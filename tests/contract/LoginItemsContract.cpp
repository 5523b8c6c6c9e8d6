#include "contract/DesktopContract.h"

namespace contract {
namespace {

using platform::port::LoginItem;
using Paths = std::vector<std::string>;

constexpr const char* kProgram = "/programs/one";

class LoginList {
 public:
  explicit LoginList(ContractDesk& desk) : items_(*desk.desktop().loginItems()) {}

  [[nodiscard]] std::vector<LoginItem> items() {
    const auto items = items_.items();
    EXPECT_TRUE(items);
    return items.value_or(std::vector<LoginItem>{});
  }
  /// What the items start, in their order; "" where that cannot be told.
  [[nodiscard]] Paths paths() {
    Paths paths;
    for (const LoginItem& item : items()) paths.push_back(items_.resolve(item).value_or(""));
    return paths;
  }
  [[nodiscard]] std::optional<LoginItem> append(std::string_view path) {
    const auto before = items();
    return items_.insert(path, before.empty() ? std::nullopt : std::optional(before.back()));
  }

 private:
  platform::port::LoginItems& items_;
};

TEST_P(DesktopContract, AProgramIsAddedAsTheLastLoginItemAndRemoved) {
  ASSERT_NE(desk().desktop().loginItems(), nullptr);
  auto& port = *desk().desktop().loginItems();
  LoginList list(desk());
  EXPECT_EQ(list.paths(), Paths{});
  desk().addLoginItem("/programs/first");
  desk().addLoginItem(std::nullopt);
  const auto ours = list.append(kProgram);
  ASSERT_TRUE(ours);
  EXPECT_EQ(list.paths(), (Paths{"/programs/first", "", kProgram}));
  EXPECT_EQ(list.items().back(), *ours);
  EXPECT_TRUE(desk().startsAtLogin(kProgram));

  EXPECT_TRUE(port.remove(*ours));
  EXPECT_FALSE(desk().startsAtLogin(kProgram));
  EXPECT_FALSE(port.remove(*ours));
  EXPECT_FALSE(port.resolve(*ours));
  EXPECT_EQ(list.paths(), (Paths{"/programs/first", ""}));
}

TEST_P(DesktopContract, ALoginItemKeepsItsPathWhateverCharactersThatHas) {
  ASSERT_NE(desk().desktop().loginItems(), nullptr);
  LoginList list(desk());
  Paths expected;
  for (const char* path : {"/plain/program", "/with blanks/my program", "/caf\xc3\xa9/it's; #1 ~&*",
                           "/quer\t/x", "/plain/program"}) {
    if (list.append(path)) expected.emplace_back(path);
    EXPECT_EQ(list.paths(), expected);
  }
  EXPECT_GE(expected.size(), 4U) << "a desktop may refuse odd paths, and these are not";
}

}  // namespace
}  // namespace contract
