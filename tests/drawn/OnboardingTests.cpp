#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPointingDevice>
#include <QRegularExpression>
#include <QWheelEvent>

#include "onboarding/OnbSpan.h"
#include "onboarding/OnboardingView.h"
#include "onboarding/WheelQuestionBeat.h"
#include "platform/linux/qt/QtMainWindows.h"
#include "tests/drawn/OpenWindows.h"
#include "tests/drawn/SeenItems.h"
#include "ui/qml/Motion.h"

namespace dormel {
namespace {

using enum OnboardingBeat;

/// A first run of somebody who has answered everything.
std::shared_ptr<OnboardingView> answered(DrawnMachine& desk) {
  desk.answerTheFirstRun();
  return OnboardingView::create({[](const auto&) { return true; }, [] {}});
}

class OnboardingPictureTest : public testing::Test {
 protected:
  void enter(OnboardingBeat beat, Seconds after) {
    drawn.picture();
    desk.pass(0.1);
    view->advance(beat);
    desk.pass(after);
    drawn.picture();
  }
  void click(const QPointF& place) {
    for (const PointerAction action : {PointerAction::press, PointerAction::release}) {
      drawn.canvas().pointer(action, place.x(), place.y());
    }
    desk.pass(0.02);
    drawn.picture();
  }
  [[nodiscard]] static double opacityOf(const QString& text) {
    for (const SeenItem& item : seenItems()) {
      if (item.text == text) return item.opacity;
    }
    return 0;
  }

  DrawnMachine desk;
  std::shared_ptr<OnboardingView> view = answered(desk);
  DrawnView drawn{desk.factory, view, 1};
};

TEST_F(OnboardingPictureTest, EachScreenShowsItsWordsInTheirOrder) {
  for (const OnboardingBeat beat : ONBOARDING_BEATS) {
    enter(beat, beat == howItWorks ? 20 : 9);
    QString seen = seenLines().join(QLatin1Char('|'));
    seen.remove(QRegularExpression(QStringLiteral("<[^>]*>"))).replace(QChar(0xa0), QLatin1Char(' '));
    qsizetype from = 0;
    for (const OnbElement& element : view->screen()->elements()) {
      std::vector<std::string> words = *element.parts;
      // A figure's text is read aloud only, and a permission that is there has no button.
      if (element.kind != OnbElement::Kind::figure)
        words.insert(words.begin(), plainText(headlineSpans(*element.text)));
      for (const std::string& word : words) {
        const qsizetype at = seen.indexOf(QString::fromStdString(word), from);
        EXPECT_GE(at, from) << rawValue(beat) << ": " << word << " in " << seen.toStdString();
        from = std::max(from, at);
      }
    }
    for (const SeenItem& item : seenItems()) {
      if (item.text.isEmpty()) continue;
      EXPECT_TRUE(QRectF(72, 40, 756, 540).contains(item.box)) << qPrintable(item.text);
    }
    EXPECT_FALSE(desk.isAnimating()) << rawValue(beat);
  }
}

TEST_F(OnboardingPictureTest, ElementsComeUpOneAfterTheOther) {
  enter(promise, 5);
  const QRectF place = boxOf(QStringLiteral("Continue"));
  enter(debrief, 0.2);
  EXPECT_EQ(opacityOf(QStringLiteral("Well done!")), 0);
  desk.pass(0.3);
  drawn.picture();
  // In the software scene graph an item that is blurred is not there at all.
  EXPECT_GT(opacityOf(QStringLiteral("Well done!")), 0.3);
  const QRectF rising = boxOf(QStringLiteral("Well done!"));
  int bright = 0;
  for (int x = 0; x < rising.width(); ++x) {
    bright +=
        drawn.picture().pixelColor(static_cast<int>(rising.x()) + x, static_cast<int>(rising.center().y())).value() >
        60;
  }
  EXPECT_GT(bright, 20);
  EXPECT_EQ(opacityOf(QStringLiteral("Understood")), 0);
  click(place.center());
  EXPECT_EQ(view->beat(), debrief);  // not there yet
  desk.pass(4);
  drawn.picture();
  EXPECT_EQ(opacityOf(QStringLiteral("Understood")), 1);
  EXPECT_LT(boxOf(QStringLiteral("Well done!")).y(), rising.y());
  click(boxOf(QStringLiteral("Understood")).center());
  EXPECT_EQ(view->beat(), science);
}

struct WithoutMotion {
  WithoutMotion() { Motion::reduce(true); }
  ~WithoutMotion() { Motion::reduce(false); }
};

class StillOnboardingTest : private WithoutMotion, public OnboardingPictureTest {};

TEST_F(StillOnboardingTest, ComesAndGoesInItsPlaceAndSoon) {
  const QString text = QStringLiteral("Well done!");
  enter(debrief, 5);
  const QRectF place = boxOf(text);
  enter(science, 0.1);
  EXPECT_GT(opacityOf(text), 0);
  EXPECT_EQ(boxOf(text), place);
  desk.pass(0.15);
  drawn.picture();
  EXPECT_EQ(opacityOf(text), 0);
  enter(debrief, 0.5);
  EXPECT_GT(opacityOf(text), 0);
  EXPECT_EQ(boxOf(text), place);
}

TEST_F(OnboardingPictureTest, EveryOptionIsSeenAndPressedTheFarthestDimmest) {
  enter(q1Latest, 4);
  OnbWheel& wheel = static_cast<WheelQuestionBeat&>(*view->screen()).wheel();
  for (const char* option : {"11 PM", "4 AM or later"}) {
    click(boxOf(QString::fromUtf8(option)).center());
    desk.pass(0.6);
    drawn.picture();
    EXPECT_EQ(wheel.options()[wheel.position()].label, option);
    double last = 2;
    for (std::size_t away = 0; away < wheel.options().size(); ++away) {
      const std::size_t row = wheel.position() == 0 ? away : wheel.options().size() - 1 - away;
      const double opacity = opacityOf(QString::fromStdString(wheel.options()[row].label));
      EXPECT_LT(opacity, last) << option << " " << away;
      EXPECT_GE(opacity, 0.2);
      last = opacity;
    }
  }
}

class OnboardingWindowTest : public testing::Test {
 protected:
  OnboardingWindowTest() {
    window->bringToFront();
    windows.settle();
  }
  ~OnboardingWindowTest() override { window.reset(); }

  void enter(OnboardingBeat beat, Seconds after = 4) {
    view->advance(beat);
    windows.pass(after);
    windows.settle();
  }
  /// Whether something took it.
  bool scroll(const QPointingDevice& device, const QPoint& pixels, const QPoint& angle) {
    const QPointF at(450, 300);
    QWheelEvent event(at, at, pixels, angle, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false,
                      Qt::MouseEventNotSynthesized, &device);
    event.setAccepted(false);
    QCoreApplication::sendEvent(windows.group->mainWindow(), &event);
    return event.isAccepted();
  }
  [[nodiscard]] const OnbWheel& wheel() const { return static_cast<WheelQuestionBeat&>(*view->screen()).wheel(); }

  OpenWindows windows;
  std::shared_ptr<OnboardingView> view = answered(windows);
  std::unique_ptr<MainWindow> window = QtMainWindows(windows.group).make({OnboardingView::SIZE, "Dormel"}, view, [] {});
  const QPointingDevice mouse{"mouse",
                              1,
                              QInputDevice::DeviceType::Mouse,
                              QPointingDevice::PointerType::Generic,
                              QInputDevice::Capability::Scroll,
                              1,
                              3};
  const QPointingDevice pad{"pad",
                            2,
                            QInputDevice::DeviceType::TouchPad,
                            QPointingDevice::PointerType::Finger,
                            QInputDevice::Capability::PixelScroll,
                            2,
                            3};
};

TEST_F(OnboardingWindowTest, TheWheelTurnsByNotchesAndFingersAndThenLetsGo) {
  enter(q1Latest);
  const struct {
    const char* what;
    const QPointingDevice& device;
    QPoint pixels;
    QPoint angle;
    int times;
    std::size_t position;  // of six; at first the fourth, 3
  } turns[] = {
      {"a notch towards the user", mouse, {}, {0, -120}, 1, 4},
      {"a notch away", mouse, {}, {0, 120}, 1, 3},
      {"a notch in eight parts", mouse, {}, {0, -15}, 8, 4},
      {"two parts of it", mouse, {}, {0, 15}, 2, 4},
      {"a finger that rests", pad, {0, 2}, {0, 16}, 40, 4},
      {"a finger that moves", pad, {0, 9}, {0, 72}, 1, 3},
      {"sideways", mouse, {}, {120, 0}, 3, 3},
  };
  for (const auto& turn : turns) {
    for (int i = 0; i < turn.times; ++i) {
      const bool taken = scroll(turn.device, turn.pixels, turn.angle);
      EXPECT_TRUE(taken) << turn.what;
    }
    EXPECT_EQ(wheel().position(), turn.position) << turn.what;
    windows.pass(0.5);
  }
  enter(q2Nights, 0.1);
  EXPECT_FALSE(scroll(mouse, {}, {0, -120}));  // the wheel is still to be seen, and deaf
}

}  // namespace
}  // namespace dormel
