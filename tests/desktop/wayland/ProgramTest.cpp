#include <gmock/gmock.h>

#include "desktop/harness/WaylandDesk.h"

using harness::Compositor;
using harness::Stream;
using harness::WaylandDesk;

namespace {

/// The real program as a native client.
class WaylandProgramTest : public testing::TestWithParam<Compositor> {
 protected:
  WaylandDesk desk{{.compositor = GetParam(), .sound = harness::SoundServerKind::PulseAudio}};
};

INSTANTIATE_TEST_SUITE_P(Compositors, WaylandProgramTest,
                         testing::ValuesIn(harness::installedCompositors()),
                         testing::PrintToStringParamName());

TEST_P(WaylandProgramTest, StartsAndSaysInOneLineWhatDoesNotWork) {
  const auto program = desk.startCalmdeck();
  ASSERT_TRUE(desk.until([&] { return desk.bus().hasOwner("org.calmdeck.Calmdeck"); }));
  EXPECT_TRUE(program->running());
  EXPECT_THAT(program->errorOutput(), testing::Not(testing::HasSubstr("xcb")));
}

}  // namespace
