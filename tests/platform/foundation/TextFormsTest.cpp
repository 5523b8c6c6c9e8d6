// How values are written and read as texts.
#include <gtest/gtest.h>

#include "platform/appkit/NSColor.h"
#include "platform/foundation/NSCoder.h"
#include "platform/foundation/Value.h"

namespace platform {
namespace {

TEST(ValueDescriptionTest, NestedContainersAreIndentedByLevel) {
  const Dictionary inner{{"deep", Dictionary{}}, {"n", 1.5}};
  const Dictionary outer{{"a b", "x_y\n\x01"}, {"list", Array{true, "", Array{}}}, {"sub", inner}};
  EXPECT_EQ(description(outer),
            "{\n"
            "    \"a b\" = \"x_y\\n\\001\";\n"
            "    list =     (\n"
            "        1,\n"
            "        \"\",\n"
            "        (\n"
            "        )\n"
            "    );\n"
            "    sub =     {\n"
            "        deep =         {\n"
            "        };\n"
            "        n = \"1.5\";\n"
            "    };\n"
            "}");
}

TEST(AttributeTextTest, NumbersAndColoursAreReadStrictly) {
  EXPECT_EQ(attributeFromText<double>("-1.25"), std::optional(-1.25));
  for (const char* text : {"", "1,5", "1.5 ", "inf", "nan", "1e999"}) {
    EXPECT_FALSE(attributeFromText<double>(text)) << text;
  }
  EXPECT_EQ(attributeFromText<NSColor>("#FF0000"), NSColor(NSColor::RGBA{1, 0, 0, 1}));
  EXPECT_EQ(attributeFromText<NSColor>("#00ff0033"), NSColor(NSColor::RGBA{0, 1, 0, 0.2}));
  EXPECT_EQ(attributeFromText<NSColor>("labelColor"), NSColor(NSSystemColor::Label));
  for (const char* text : {"#", "#12345", "#1234567", "#gg0000", "#-10000", "red"}) {
    EXPECT_FALSE(attributeFromText<NSColor>(text)) << text;
  }
}

}  // namespace
}  // namespace platform
