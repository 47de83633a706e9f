// What drawing costs: drawing_bench. The time from the start of main to the first frame, the memory of a process that
// draws two screens, and the processor time of a frame while the keys are held. Each scale is a process of its own.
#include <QFile>
#include <QGuiApplication>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "tests/drawn/DrawnNight.h"

using namespace dormel;

namespace {

double microseconds(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

/// MB under that name in the kernel's account of this process.
double memory(const char* name) {
  QFile rollup(QStringLiteral("/proc/self/smaps_rollup"));
  if (!rollup.open(QIODevice::ReadOnly)) return 0;
  for (const QByteArray& line : rollup.readAll().split('\n')) {
    if (line.startsWith(name))
      return line.mid(line.indexOf(':') + 1).trimmed().split(' ').constFirst().toDouble() / 1e3;
  }
  return 0;
}

int measure(double scale, int argc, char** argv) {
  const double start = microseconds(CLOCK_MONOTONIC);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  DrawnNight night;
  const auto show = [&](int& frames, long& pixels) {
    auto drawn = std::make_unique<DrawnView>(night.factory, night.view(), scale);
    drawn->canvas().setOnFrame([&](const Pixels&, const PixelRect& changed) {
      ++frames;
      pixels += static_cast<long>(changed.width) * changed.height;
    });
    drawn->picture();
    return drawn;
  };
  int frames = 0;
  int otherFrames = 0;
  long pixels = 0;
  const auto first = show(frames, pixels);
  const double firstFrame = microseconds(CLOCK_MONOTONIC) - start;

  // One screen fades in, and its keys are held for eight seconds.
  const auto cost = [&](Seconds duration) {
    frames = 0;
    pixels = 0;
    const double before = microseconds(CLOCK_PROCESS_CPUTIME_ID);
    for (int i = 0; i < static_cast<int>(duration / 0.02); ++i) {
      night.pass(0.02);
      first->picture();
    }
    return (microseconds(CLOCK_PROCESS_CPUTIME_ID) - before) / frames;
  };
  night.pass(1.3);
  const double fade = cost(2.4);
  night.pass(1);
  first->picture();
  night.holdKeys();
  night.pass(0.5);
  first->picture();
  const double hold = cost(8);
  const long changed = pixels / frames;
  night.machine.keyboard.releaseAll();
  night.pass(1);

  const auto second = show(otherFrames, pixels);
  std::printf(
      "%gx   first frame %5.1f ms   fade %5.0f us/frame   hold %5.0f us/frame, %ld pixels changed   "
      "two screens: resident %.1f MB, proportional %.1f MB, private dirty %.1f MB\n",
      scale, firstFrame / 1000, fade, hold, changed, memory("Rss"), memory("Pss:"), memory("Private_Dirty"));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) return measure(std::atof(argv[1]), argc, argv);
  for (const char* scale : {"1", "2"}) {
    if (std::system((std::string(argv[0]) + " " + scale).c_str()) != 0) return 1;
  }
  return 0;
}
