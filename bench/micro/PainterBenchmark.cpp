#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>

#include "bench/SimulatedProgram.h"
#include "desktop/linux/ui/LayerPainter.h"

namespace {

using namespace std::chrono_literals;

constexpr QSize kPicture{80, 40};  // room for a switch with its shadow
constexpr QPointF kLowerLeft{10, 30};

QImage pictureOf(const benchmark::State& state) {
  const auto ratio = static_cast<double>(state.range(0));
  QImage image(kPicture * ratio, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(ratio);
  return image;
}

// A switch while its knob is on the way.
void frameOfASwitch(benchmark::State& state) {
  bench::SimulatedProgram program;
  QImage image = pictureOf(state);
  const linux_desktop::Theme theme{QPalette()};
  program.press();
  program.release();
  program.pass(50ms);
  while (state.KeepRunning()) {
    QPainter painter(&image);
    linux_desktop::LayerPainter(painter, theme, program.now())
        .paint(program.masterSwitch(), kLowerLeft);
  }
}
BENCHMARK(frameOfASwitch)->Arg(1)->Arg(2);

// The floor: each pixel of the same picture written once.
void fillOfThePicture(benchmark::State& state) {
  QImage image = pictureOf(state);
  while (state.KeepRunning()) {
    QPainter painter(&image);
    painter.fillRect(QRect({}, kPicture), Qt::white);
  }
}
BENCHMARK(fillOfThePicture)->Arg(1)->Arg(2);

}  // namespace
