#include <gmock/gmock.h>

#include <algorithm>

#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::Panel;
using harness::WindowManager;

namespace {

TEST(UpdateCheckTest, WithoutAPackageServiceTheUserIsToldWhereUpdatesComeFrom) {
  ProgramDesk program{
      DeskOptions{.windowManager = WindowManager::Openbox, .panel = Panel::XfcePanel}};
  ASSERT_TRUE(program.start());
  ASSERT_TRUE(program.openMenu());
  for (const char* key : {"Up", "Up", "Return"}) program.desk().input().key(key);

  const harness::AccessibilityClient reader(program.desk());
  ASSERT_TRUE(reader.await("OK"));
  std::vector<std::string> texts;
  for (const harness::AccessibleElement& element : reader.elements()) texts.push_back(element.name);
  EXPECT_THAT(texts, testing::Contains("New versions of Calmdeck come with the system's updates."));
  program.desk().input().key("Return");
  const auto isAnswered = [&] {
    return std::ranges::none_of(reader.elements(), [](const harness::AccessibleElement& element) {
      return element.name == "OK";
    });
  };
  EXPECT_TRUE(program.desk().until(isAnswered));
  EXPECT_THAT(program.complaints("updates"), testing::IsEmpty()) << "the launch asked as well";
}

}  // namespace
