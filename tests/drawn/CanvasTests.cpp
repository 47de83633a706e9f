#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryFile>
#include <memory>
#include <vector>

#include "overlay/qml/OverlayScenes.h"
#include "platform/linux/qt/ChangedRect.h"
#include "tests/drawn/DrawnNight.h"

namespace dormel {
namespace {

TEST(ChangedRectTest, HoldsEveryDifferenceAndNothingElse) {
  struct Case {
    std::vector<std::pair<int, int>> points;
    PixelRect expected;
  };
  constexpr int width = 7;
  constexpr int height = 5;
  constexpr int stride = 10;
  const auto index = [](int x, int y) { return static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x); };
  for (const Case& one :
       {Case{{}, {}}, Case{{{0, 0}}, {0, 0, 1, 1}}, Case{{{6, 4}}, {6, 4, 1, 1}}, Case{{{1, 3}, {5, 1}}, {1, 1, 5, 3}},
        Case{{{2, 2}, {4, 2}, {3, 4}}, {2, 2, 3, 3}}, Case{{{6, 0}, {0, 4}}, {0, 0, 7, 5}}}) {
    // The pictures lie in wider rows, whose ends differ and do not count.
    const std::vector<std::uint32_t> before(index(0, height), 1);
    std::vector<std::uint32_t> after = before;
    for (int y = 0; y < height; ++y) after[index(width, y)] = 2;
    for (const auto& [x, y] : one.points) after[index(x, y)] = 3;
    const PixelRect found = changedRect({before.data(), width, height, stride}, {after.data(), width, height, stride});
    EXPECT_TRUE(found == one.expected) << found.x << ' ' << found.y << ' ' << found.width << ' ' << found.height;
  }
}

int brightPixels(const QImage& picture) {
  int count = 0;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) count += qGray(picture.pixel(x, y)) > 100;
  }
  return count;
}

TEST(BrokenTest, ASceneThatCannotBeLoadedIsToldOnce) {
  DrawnNight night;
  QmlSceneRegistry registry;
  registry.add(ViewKind::blockerOverlay, {QUrl(QStringLiteral("qrc:/qt/qml/Dormel/Overlay/Nowhere.qml")),
                                          [](const auto&) { return std::make_unique<ViewBridge>(); }, Qt::black});
  int told = 0;
  QmlCanvas canvas(std::make_shared<SceneLoader>(std::move(registry)), night.view(), [&told] { ++told; });
  canvas.setOnFrame([](const Pixels&, const PixelRect&) {});
  canvas.setShowing(true);
  for (int i = 0; i < 5; ++i) {
    canvas.resize({100.0 + i, 100}, 1);
    while (canvas.isFramePending()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  EXPECT_EQ(told, 1);
  EXPECT_EQ(night.machine.output.errors().size(), 1U);
}

TEST(PointerTest, ReachesWhatTakesItAndLeavesTheRestToTheWindow) {
  DrawnNight night;
  QTemporaryFile source(QDir::tempPath() + QStringLiteral("/XXXXXX.qml"));
  ASSERT_TRUE(source.open());
  source.write(R"(import QtQuick
    Item {
      required property var view
      implicitWidth: 100; implicitHeight: 50
      Rectangle { id: fill; anchors.fill: parent; color: "black" }
      MouseArea { width: 50; height: 50; onClicked: fill.color = "white" }
    })");
  source.close();
  QmlSceneRegistry registry;
  registry.add(ViewKind::blockerOverlay, {QUrl::fromLocalFile(source.fileName()),
                                          [](const auto&) { return std::make_unique<ViewBridge>(); }, Qt::black});
  QmlCanvasFactory factory(std::move(registry));
  DrawnView drawn(factory, night.view(), 2);
  EXPECT_EQ(brightPixels(drawn.picture()), 0);

  EXPECT_FALSE(drawn.canvas().pointer(PointerAction::press, 75, 25));
  drawn.canvas().pointer(PointerAction::release, 75, 25);
  EXPECT_TRUE(drawn.canvas().pointer(PointerAction::press, 25, 25));
  EXPECT_EQ(brightPixels(drawn.picture()), 0);
  drawn.canvas().pointer(PointerAction::release, 25, 25);
  EXPECT_EQ(brightPixels(drawn.picture()), 200 * 100);
}

}  // namespace
}  // namespace dormel
