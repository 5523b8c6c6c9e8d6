// What a window of ours is told of a key that is pressed in it.

#include "desktop/keys/KeysDesk.h"

namespace {

using namespace place;

struct Press {
  std::vector<std::uint8_t> places;
  /// Code, flags and character of the event; the last two are hexadecimal.
  const char* event;
};

struct Layout {
  std::vector<std::string> arguments;
  const char* name;
  std::vector<Press> presses;
};

TEST(KeyTranslator, TellsKeysAsThePlatformDoes) {
  KeysDesk keys;
  const Layout layouts[] = {
      {{"us"},
       "English",
       {{{kP}, "35 0 70"},
        {{kControl, kAlt, kP}, "35 c0000 70"},
        {{kShift, kSuper, kP}, "35 120000 50"},
        {{kShift, k1}, "18 20000 31"},
        {{kAlt, kMinus}, "27 80000 2d"},
        {{kControl, kUp}, "126 a40000 -"},
        {{kAlt, kF1}, "122 880000 f704"},
        {{kReturn}, "36 0 d"},
        {{kControl, kTab}, "48 40000 9"},
        {{9}, "53 0 -"},
        {{22}, "51 0 -"},
        {{kDelete}, "117 800000 -"},
        {{kControl, kKeypad5}, "87 240000 -"},
        {{kKeypadEnter}, "76 200000 -"},
        {{kControl, kMenu}, "65535 40000 -"}}},
      {{"de"},
       "German",
       {{{kZ}, "16 0 79"},
        {{21}, "65535 0 -"},
        {{kQuote}, "65535 0 -"},
        {{kControl, kRightAlt, kP}, "35 40000 -"},
        {{kShift, kRightAlt, kP}, "35 20000 -"}}},
      {{"fr"}, "French", {{{kQ}, "0 0 61"}, {{k1}, "18 0 31"}, {{kShift, k1}, "18 20000 31"}}},
      {{"ru"}, "Russian", {{{kControl, kA}, "0 40000 61"}, {{kShift, kA}, "0 20000 41"}}},
      {{"-layout", "fr,ru", "-option", "grp:menu_toggle"}, "French", {{{kA}, "12 0 71"}}},
  };
  for (const Layout& layout : layouts) {
    keys.setLayout(layout.arguments);
    ASSERT_TRUE(keys.adapted(layout.name, 0));
    for (const Press& press : layout.presses)
      EXPECT_EQ(keys.typed(press.places), press.event) << layout.name;
  }
  keys.input().places({kMenu});
  EXPECT_EQ(keys.typed({kControl, kA}), "12 40000 71") << "Russian beside French";
  keys.input().places({kMenu, kCapsLock});
  EXPECT_EQ(keys.typed({kA}), "12 10000 71") << "Caps Lock is no Shift";
}

}  // namespace
