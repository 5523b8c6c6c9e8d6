#include "desktop/linux/files/IniFile.h"

#include <gtest/gtest.h>

#include <optional>

namespace linux_desktop {
namespace {

TEST(IniFile, ValuesAreReadAsTheyAreWritten) {
  const QByteArray text = "# mine\n[Other]\nkey=1\n[Desktop]\n key = a=b \nlast=2";
  EXPECT_EQ(iniValue(text, "Desktop", "key"), QByteArray("a=b"));
  EXPECT_EQ(iniValue(text, "Desktop", "none"), std::nullopt);
  EXPECT_EQ(iniValue(text, "None", "key"), std::nullopt);
}

TEST(IniFile, OneValueChangesAndNoOtherByte) {
  struct Row {
    const char* before;
    std::optional<QByteArray> value;
    const char* after;
  };
  const Row rows[] = {
      {"", "on", "[General]\nquiet=on\n"},
      {"[General]\nquiet=off\n", "on", "[General]\nquiet=on\n"},
      {"[General]\nquiet = off\nnot_quiet=1", "on", "[General]\nquiet=on\nnot_quiet=1"},
      {"; \xe9t\xe9\n[general]\r\na=\xe9\\xe9, b\n", "on",
       "; \xe9t\xe9\n[general]\r\nquiet=on\na=\xe9\\xe9, b\n"},
      {"[Other]\nquiet=off\n", "on", "[General]\nquiet=on\n\n[Other]\nquiet=off\n"},
      {"[General]\n\n[Other]\nquiet=off\n", "on", "[General]\nquiet=on\n\n[Other]\nquiet=off\n"},
      {"[Other]\nquiet=1\n[General]\n quiet = 1 \nlast=2", std::nullopt,
       "[Other]\nquiet=1\n[General]\nlast=2"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(withIniValue(row.before, "General", "quiet", row.value).toStdString(), row.after)
        << row.before;
  }
}

}  // namespace
}  // namespace linux_desktop
