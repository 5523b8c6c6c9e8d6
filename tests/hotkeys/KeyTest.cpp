#include "hotkeys/Key.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <vector>

#include "platform/carbon/KeyCodes.h"

namespace hotkeys {
namespace {

std::vector<Key> allKeys() {
  std::vector<Key> keys;
  for (std::size_t i = 0; i < kKeyCount; ++i) keys.push_back(static_cast<Key>(i));
  return keys;
}

TEST(KeyTest, EveryKeyHasACodeOfItsOwnAndIsFoundByIt) {
  EXPECT_EQ(kKeyCount, 113U);
  std::set<std::uint32_t> codes;
  for (const Key key : allKeys()) {
    const std::uint32_t code = carbonKeyCode(key);
    EXPECT_LE(code, 126U);
    EXPECT_TRUE(codes.insert(code).second) << code;
    EXPECT_EQ(keyFromCarbonKeyCode(code), key);
  }
}

TEST(KeyTest, TheCodesBetweenBelongToNoKey) {
  for (const std::uint32_t code : {10U, 52U, 66U, 68U, 70U, 77U, 93U, 94U, 95U, 102U, 104U, 108U,
                                   110U, 112U, 127U, 0xFFFFU, 0xFFFFFFFFU}) {
    EXPECT_EQ(keyFromCarbonKeyCode(code), std::nullopt) << code;
  }
}

TEST(KeyTest, TheFirstAndTheLastOfEachGroupHaveTheirKeysCodes) {
  const struct {
    Key key;
    std::uint32_t code;
  } rows[] = {
      {Key::A, 0},        {Key::Z, 6},         {Key::Zero, 29},    {Key::Nine, 25},
      {Key::Period, 47},  {Key::Minus, 27},    {Key::Space, 49},   {Key::Return, 36},
      {Key::Command, 55}, {Key::CapsLock, 57}, {Key::PageUp, 116}, {Key::LeftArrow, 123},
      {Key::F1, 122},     {Key::F20, 90},      {Key::Keypad0, 82}, {Key::KeypadPlus, 69},
      {Key::Escape, 53},  {Key::Mute, 74},
  };
  for (const auto& row : rows) EXPECT_EQ(carbonKeyCode(row.key), row.code);
}

TEST(KeyTest, WhatTheUserSeesNamesAKeyThatLooksTheSame) {
  for (const Key key : allKeys()) {
    const std::string text(description(key));
    EXPECT_NE(text, "");
    const std::optional<Key> named = keyFromName(text);
    if (key == Key::KeypadMultiply || key == Key::KeypadPlus) {
      EXPECT_EQ(named, std::nullopt) << text;
    } else {
      ASSERT_TRUE(named) << text;
      EXPECT_EQ(description(*named), text);
    }
  }
}

TEST(KeyTest, LettersAndDigitsAreTheirOwnNames) {
  for (char c = 'a'; c <= 'z'; ++c) {
    const std::string lower(1, c);
    const std::string upper(1, static_cast<char>(std::toupper(c)));
    const auto key = keyFromName(lower);
    ASSERT_TRUE(key) << lower;
    EXPECT_EQ(keyFromName(upper), key);
    EXPECT_EQ(description(*key), upper);
  }
  for (char c = '0'; c <= '9'; ++c) {
    const std::string digit(1, c);
    const auto key = keyFromName(digit);
    const auto keypad = keyFromName("KEYPAD" + digit);
    ASSERT_TRUE(key && keypad) << digit;
    EXPECT_NE(key, keypad);
    EXPECT_EQ(description(*key), digit);
    EXPECT_EQ(description(*keypad), digit);
  }
}

TEST(KeyTest, FunctionKeysAreNamedWithAndWithoutTheirMark) {
  for (int number = 1; number <= 20; ++number) {
    const std::string plain = "F" + std::to_string(number);
    const std::string marked = (number < 10 ? "\uF860" : "\uF861") + plain;
    const auto key = keyFromName(plain);
    ASSERT_TRUE(key) << plain;
    EXPECT_EQ(description(*key), marked);
    EXPECT_EQ(keyFromName(marked), key);
    EXPECT_EQ(keyFromName("f" + std::to_string(number)), key);
  }
  EXPECT_EQ(keyFromName("f21"), std::nullopt);
  EXPECT_EQ(keyFromName("\uF861F1"), std::nullopt);
}

TEST(KeyTest, NamesAndSymbolsFindTheirKey) {
  const struct {
    const char* name;
    std::optional<Key> key;
  } rows[] = {
      {"⌘", Key::Command},
      {"\uF8FF", Key::Command},
      {"rightCommand", Key::RightCommand},
      {"RightBracket", Key::RightBracket},
      {"]", Key::RightBracket},
      {"\"", Key::Quote},
      {"\\", Key::Backslash},
      {"\u02CB", Key::Grave},
      {"\uFF40", Key::Grave},
      {" ", Key::Space},
      {"\t", Key::Tab},
      {"\r", Key::Return},
      {"⏎", Key::Return},
      {"⮐", Key::Return},
      {"KeypadEnter", Key::KeypadEnter},
      {"Fn", Key::Function},
      {"ForwardDelete", Key::ForwardDelete},
      {"?\u20DD", Key::Help},
      {"🔇", Key::Mute},
      {"", std::nullopt},
      {"plus", std::nullopt},
      {"+", std::nullopt},
      {"keypad", std::nullopt},
      {"enter", std::nullopt},
      {"!", std::nullopt},
      {"ä", std::nullopt},
      {"↩", std::nullopt},
      {"a ", std::nullopt},
  };
  for (const auto& row : rows) EXPECT_EQ(keyFromName(row.name), row.key) << row.name;
  EXPECT_EQ(keyFromName(std::string_view("\0", 1)), std::nullopt);
}

}  // namespace
}  // namespace hotkeys
