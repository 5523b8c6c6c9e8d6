#include <gtest/gtest.h>

#include "desktop/linux/notifications/LxqtDoNotDisturb.h"

namespace {

TEST(LxqtSettings, NoByteOfTheOtherEntriesChanges) {
  struct Row {
    const char* before;
    const char* after;
  };
  const Row rows[] = {
      {"", "[General]\nquiet=on\n"},
      {"[General]\nquiet=off\n", "[General]\nquiet=on\n"},
      {"[General]\nquiet = off\nnot_quiet=1", "[General]\nquiet=on\nnot_quiet=1"},
      {"; \xe9t\xe9\n[general]\r\na=\xe9\\xe9, b\n",
       "; \xe9t\xe9\n[general]\r\nquiet=on\na=\xe9\\xe9, b\n"},
      {"[Other]\nquiet=off\n", "[General]\nquiet=on\n\n[Other]\nquiet=off\n"},
      {"[General]\n\n[Other]\nquiet=off\n", "[General]\nquiet=on\n\n[Other]\nquiet=off\n"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(linux_desktop::withGeneralEntry(row.before, "quiet", "on").toStdString(), row.after)
        << row.before;
  }
}

}  // namespace
