#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPointingDevice>
#include <QWheelEvent>

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
  desk.store(defaultsKey::onboardingLate, {std::int64_t{26}});
  desk.store(defaultsKey::onboardingNights, {4.0});
  desk.store(defaultsKey::onboardingWant, {std::int64_t{23}});
  desk.store(defaultsKey::onboardingKeeps, {PropertyListArray{{std::string("scrolling")}}});
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
  const struct {
    OnboardingBeat beat;
    Seconds settled;
    QStringList lines;
  } screens[] = {
      {promise, 5, {"Your Mac locks at your bedtime.", "No willpower needed.", "Continue"}},
      {q1Latest,
       4,
       {"What's the latest you go to bed?", "11 PM", "Midnight", "1 AM", "2 AM", "3 AM", "4 AM or later", "Continue"}},
      {q2Nights, 4, {"How often do you sleep this late?", "1–2 nights", "3–4 nights", "Most nights"}},
      {q3Want, 4, {"When do you <i>want</i> to be asleep?", "10 PM", "11 PM", "Midnight", "1 AM", "Continue"}},
      {q4Keeps,
       4,
       {"What keeps you up?", "Pick all that apply.", "Scrolling", "Chatting", "Movies & shows", "Work", "Games",
        "Everything", "Continue"}},
      {mirror,
       7,
       {"You're losing", "12", "hours of sleep a week",
        "You're up until about 2 AM, several nights a week. Mostly scrolling.", "I want to sleep better"}},
      {howItWorks, 20, {"How Dormel works", "It gets you to sleep.", "Automatically gone by the morning.", "Continue"}},
      {accessibility,
       5,
       {"Let's test Dormel.", "It needs one permission to hold the lock.", "Accessibility", "Continue"}},
      {demo, 5, {"Ready to try?", "Your screen will lock.\nTo snooze, hold the keys for 5 seconds.", "Test Dormel"}},
      {debrief, 5, {"Well done!", "Dormel locks your Mac at your selected time, every night.", "Understood"}},
      {science,
       9,
       {"Better sleep, better everything.", "STANFORD", "SLEEP", "PSYCHOLOGICAL MEDICINE", "UK BIOBANK",
        "+55% more energy", "Stanford athletes who slept more", "−38% risk of depression", "a regular sleep schedule",
        "−48% risk of early death", "same bedtime every night", "Continue"}},
      {schedule,
       5,
       {"When should your Mac lock?", "10 PM", "11 PM", "Midnight", "1 AM", "2 AM", "Set my dormel",
        "You can change this anytime."}},
      {finale,
       8,
       {"Setting up your dormel…", "Locks at midnight", "Every night, automatically", "Gone by morning", "Sleep Well"}},
      {brand, 6, {"Say hello to your good sleep.", "Begin"}},
  };
  for (const auto& [beat, settled, lines] : screens) {
    enter(beat, settled);
    EXPECT_EQ(seenLines().join(QLatin1Char('|')).replace(QChar(0xa0), QLatin1Char(' ')).toStdString(),
              lines.join(QLatin1Char('|')).toStdString());
    for (const SeenItem& item : seenItems()) {
      if (item.text.isEmpty()) continue;
      EXPECT_TRUE(QRectF(72, 40, 756, 540).contains(item.box)) << qPrintable(item.text);
    }
    EXPECT_FALSE(desk.isAnimating()) << qPrintable(lines.first());
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
