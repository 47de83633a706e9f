// The painter in virtual time: what is shown while it works, dies, hangs and lies.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "overlay/BlockerOverlayView.h"
#include "overlay/BlockerWindow.h"
#include "platform/common/paint/PaintedCanvases.h"
#include "platform/common/paint/PlainLines.h"
#include "platform/sim/SimPainter.h"
#include "settings/AccessibilityCardView.h"
#include "tests/sim/FakeSession.h"
#include "tests/sim/NightFixture.h"

namespace dormel {
namespace {

using Mood = SimPainter::Mood;
using Lie = SimPainter::Lie;

TEST(PaintMessages, ArriveAsTheyWereSentAndNothingElseDoes) {
  const paint::Order orders[] = {
      paint::Scene{1, 2, 3, ViewKind::accessibilityCard, true, {464, 543.5}, 1.25, std::string("a\0b", 3)},
      paint::Close{7}, paint::Pointer{7, PointerAction::release, -1.5, 80}, paint::Release{7, 8, 1}, paint::Ping{9}};
  for (const paint::Order& order : orders) {
    const std::string bytes = paint::encoded(order);
    const auto back = paint::decodedOrder(bytes);
    ASSERT_TRUE(back) << order.index();
    EXPECT_EQ(back->index(), order.index());
    EXPECT_EQ(paint::encoded(*back), bytes);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      EXPECT_FALSE(paint::decodedOrder(bytes.substr(0, length))) << order.index() << ' ' << length;
    }
    EXPECT_FALSE(paint::decodedOrder(bytes + '\0')) << order.index();
  }
  const paint::Answer answers[] = {paint::Hello{1},
                                   paint::Memory{1, 2, 464, 544, 2},
                                   paint::Frame{1, 2, 1, {3, 4, 5, 6}},
                                   paint::Done{1, 2},
                                   paint::Areas{1, {{1, 2, 3, 4}, {5, 6, 7, 8}}},
                                   paint::Act{1, 2},
                                   paint::Pong{3}};
  for (const paint::Answer& answer : answers) {
    const std::string bytes = paint::encoded(answer);
    const auto back = paint::decodedAnswer(bytes);
    ASSERT_TRUE(back && back->index() == answer.index());
    EXPECT_EQ(paint::encoded(*back), bytes);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      EXPECT_FALSE(paint::decodedAnswer(bytes.substr(0, length))) << answer.index() << ' ' << length;
    }
  }
  const double endless = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(paint::decodedAnswer(paint::encoded(paint::Areas{1, {{0, 0, endless, 1}}})));
  paint::Scene scene;
  scene.kind = static_cast<ViewKind>(200);
  EXPECT_FALSE(paint::decodedOrder(paint::encoded(scene)));
}

/// A locked screen whose picture comes from a painter.
class PainterTest : public testing::Test {
 protected:
  PainterTest() {
    session->fadesIn = false;
    machine.windows.setCanvases(&canvases);
  }

  void lock() {
    blocker = BlockerWindow::blocker(*machine.screens.main(), session);
    since = machine.timeline.uptime();
    blocker->window().makeKeyAndOrderFront();
    machine.settle();
  }
  void hold() { pressAllByHand(machine, *session->controller); }
  [[nodiscard]] SimWindow& window() const { return static_cast<SimWindow&>(blocker->window()); }
  [[nodiscard]] bool isPainted() const { return window().frames() > 0 && window().corner() != paint::PLAIN_GROUND; }
  /// Lines of the guard's own are on screen.
  [[nodiscard]] bool isPlain() const { return window().frames() > 0 && !isPainted(); }
  [[nodiscard]] std::vector<long> startsInMilliseconds() const {
    std::vector<long> starts;
    for (const Seconds start : painter.starts()) starts.push_back(std::lround((start - since) * 1000));
    return starts;
  }

  SimMachine machine;
  std::shared_ptr<FakeSession> session = std::make_shared<FakeSession>();
  SimPainter painter{machine.timeline};
  paint::PaintedCanvases canvases{painter};
  std::shared_ptr<BlockerWindow> blocker;
  Seconds since = 0;
};

TEST_F(PainterTest, IsStartedOnceItIsCoveredAndAskedOnlyForWhatChanges) {
  blocker = BlockerWindow::blocker(*machine.screens.main(), session);
  machine.advance(1);
  EXPECT_TRUE(painter.starts().empty());
  lock();
  machine.advance(0.2);
  EXPECT_TRUE(isPainted());
  const int frames = window().frames();
  int woken = 0;
  machine.timeline.setAfterEvent([&woken] { ++woken; });
  machine.advance(30);
  machine.timeline.setAfterEvent(nullptr);
  EXPECT_EQ(woken, 30) << "for the clock alone";
  EXPECT_EQ(window().frames(), frames);
  const KeyCode letter = session->controller->requiredKeys()[4].keyCode;
  machine.keyboard.press(letter);
  session->controller->handleKeyDown(letter);
  machine.advance(0.1);
  EXPECT_EQ(window().frames(), frames + 1);
  EXPECT_EQ(painter.starts().size(), 1U);
  EXPECT_TRUE(machine.output.errors().empty());
}

TEST_F(PainterTest, IsStartedAgainWithGrowingPausesForEver) {
  painter.setMood(Mood::dies);
  lock();
  machine.advance(0.24);
  EXPECT_EQ(window().frames(), 0);
  machine.advance(0.02);  // the third has failed
  EXPECT_TRUE(isPlain());
  machine.advance(22.7);
  EXPECT_EQ(startsInMilliseconds(), (std::vector<long>{0, 0, 250, 750, 1750, 3750, 7750, 12750, 17750, 22750}));
  EXPECT_EQ(machine.output.errors().size(), 3U) << "the log is not filled with it";
  painter.setMood(Mood::paints);
  machine.advance(5.2);
  EXPECT_TRUE(isPainted()) << "and a good one is taken whenever it comes";
}

TEST_F(PainterTest, ShowsPlainLinesWhenNoPictureComes) {
  for (const Mood mood : {Mood::hangs, Mood::absent, Mood::babbles}) {
    painter.setMood(mood);
    lock();
    machine.advance(2.1);
    EXPECT_TRUE(isPlain()) << static_cast<int>(mood);
    const int frames = window().frames();
    session->controller->handleKeyDown(keyCode::space);
    machine.settle();
    EXPECT_EQ(window().frames(), frames + 1) << "the lines follow the keys";
    session->controller->handleKeyUp(keyCode::space);
  }
}

TEST_F(PainterTest, AHoldOutlivesItsPainters) {
  int completed = 0;
  session->controller->setOnBypassComplete([&] { ++completed; });
  lock();
  machine.advance(3);
  hold();
  for (int i = 0; i < 29; ++i) {
    machine.advance(1);
    EXPECT_FALSE(isPlain());
    if (i % 4 == 3) painter.die();
    machine.advance(0.001);
    EXPECT_TRUE(isPainted()) << "the last picture stays";
  }
  EXPECT_EQ(completed, 0);
  machine.advance(1.1);
  EXPECT_EQ(completed, 1);
  EXPECT_EQ(painter.starts().size(), 8U);
}

TEST_F(PainterTest, ReplacesOneThatStandsStillWhileSomethingIsDue) {
  struct Case {
    const char* what;
    std::function<void()> due;
    Seconds within;
  };
  const Case cases[] = {{"a key", [this] { session->controller->handleKeyDown(keyCode::space); }, 1.2},
                        {"a hold",
                         [this] {
                           hold();
                           machine.advance(1);
                           painter.hang();
                         },
                         1.7}};
  for (const Case& one : cases) {
    lock();
    machine.advance(5);
    ASSERT_TRUE(isPainted());
    const std::size_t before = painter.starts().size();
    if (std::string(one.what) == "a key") painter.hang();
    one.due();
    machine.advance(one.within);
    EXPECT_EQ(painter.starts().size(), before + 1) << one.what;
    machine.advance(0.3);
    EXPECT_TRUE(isPainted()) << one.what;
    session->controller->handleKeyUp(keyCode::space);
    machine.keyboard.releaseAll();
    session->controller->reset();
  }
  // One that stands still while nothing is due costs nobody anything.
  painter.hang();
  machine.advance(60);
  EXPECT_TRUE(isPainted());
}

TEST_F(PainterTest, CanvasesThatComeAndGoGiveOneThatStandsStillNoMoreTime) {
  lock();
  machine.advance(3);
  painter.hang();
  for (int i = 0; i < 4; ++i) {
    lock();
    machine.advance(0.4);
  }
  EXPECT_EQ(painter.starts().size(), 2U);
  EXPECT_TRUE(isPainted());
  painter.setMood(Mood::hangs);  // from its start on
  painter.die();
  for (int i = 0; i < 4; ++i) {
    lock();
    machine.advance(3);
  }
  EXPECT_EQ(painter.starts().size(), 4U);
  painter.setMood(Mood::paints);
  painter.die();
  machine.advance(8);
  painter.hang();
  lock();
  blocker.reset();
  const std::size_t before = painter.starts().size();
  machine.advance(60);
  EXPECT_EQ(painter.starts().size(), before) << "nobody needs one";
}

TEST_F(PainterTest, APictureThatIsNoLongerTrueDoesNotStay) {
  lock();
  machine.advance(5);
  painter.setMood(Mood::absent);
  painter.die();
  machine.advance(20);
  EXPECT_TRUE(isPainted()) << "nothing has changed since";
  session->controller->handleKeyDown(keyCode::space);
  machine.advance(1.9);
  EXPECT_TRUE(isPainted());
  machine.advance(0.2);
  EXPECT_TRUE(isPlain()) << "other keys are asked for now";
  painter.setMood(Mood::paints);
  machine.advance(5.3);
  EXPECT_TRUE(isPainted());
}

TEST_F(PainterTest, RefusesWhatCannotBeTrue) {
  for (int lie = 0; lie <= static_cast<int>(SimPainter::LAST_LIE); ++lie) {
    lock();
    machine.advance(3);
    ASSERT_TRUE(isPainted()) << lie;
    const std::size_t before = painter.starts().size();
    painter.lie(static_cast<Lie>(lie));
    machine.advance(0.001);
    EXPECT_EQ(painter.starts().size(), before + 1) << "lie " << lie;
    machine.advance(0.3);
    EXPECT_TRUE(isPainted()) << lie;
  }
}

TEST_F(PainterTest, OneThatIsSlowGetsMoreTimeNotAnotherChanceToBeKilled) {
  lock();
  machine.advance(5);
  machine.stallMain(30);  // this process stood still, not the painter
  session->controller->handleKeyDown(keyCode::space);
  machine.advance(31);
  EXPECT_EQ(painter.starts().size(), 1U);
}

TEST_F(PainterTest, EndsWhenNobodyNeedsIt) {
  lock();
  machine.advance(1);
  blocker.reset();
  machine.advance(9);
  EXPECT_TRUE(painter.isRunning());
  machine.advance(2);
  EXPECT_FALSE(painter.isRunning());
  machine.advance(60);
  EXPECT_EQ(painter.starts().size(), 1U);
}

TEST_F(PainterTest, SaysWhatWasPressedAndWhereAPressIsTaken) {
  int opened = 0;
  const auto card = AccessibilityCardView::create([&] { ++opened; });
  const auto canvas = canvases.make(card);
  canvas->resize(canvas->fittingSize(), 1);
  canvas->setOnFrame([](const Pixels&, const PixelRect&) {});
  canvas->setShowing(true);
  machine.advance(1);
  EXPECT_TRUE(canvas->pointer(PointerAction::press, 11, 21));
  EXPECT_FALSE(canvas->pointer(PointerAction::press, 9, 21));
  EXPECT_FALSE(canvas->pointer(PointerAction::release, 11, 21));
  machine.advance(0.1);
  EXPECT_EQ(painter.pointers().size(), 3U);
  painter.act(AccessibilityCardState::OPEN_SETTINGS + 1);
  machine.advance(0.1);
  EXPECT_EQ(opened, 0);
  painter.act(AccessibilityCardState::OPEN_SETTINGS);
  machine.advance(0.1);
  EXPECT_EQ(opened, 1);
}

TEST(PlainLines, NameTheKeysThatEverybodyCanRead) {
  BlockerOverlayState state;
  state.keys = {
      {"Ж", "", "H", 4, true, false}, {"თ", "", "T", 17, false, false}, {"L.Cmd", "Super", "L.Cmd", 55, false, true}};
  state.hold = {100, 30};
  state.allKeysHeld = true;
  state.words.hold = "Hold all of them down for %1 seconds.";
  state.words.keepHolding = "Keep holding... %1 s left";
  const auto lines = state.plainLines(117.5, paint::canWritePlainly);
  const auto says = [&](std::string_view text) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return line.find(text) != line.npos; });
  };
  EXPECT_TRUE(says("[Ж]    T    L.Cmd (Super)"));
  EXPECT_TRUE(says("13"));
  state.allKeysHeld = false;
  EXPECT_NE(state.plainLines(0, paint::canWritePlainly)[3].find("Hold all of them"), std::string::npos);
}

TEST(PlainLines, BreakWhatIsTooLongAndStayInside) {
  const auto lit = [](const std::vector<std::uint32_t>& picture, int width, int x0, int x1) {
    int count = 0;
    for (std::size_t i = 0; i < picture.size(); ++i) {
      const int x = static_cast<int>(i) % width;
      count += x >= x0 && x < x1 && (picture[i] & 0xFF) > 0x80 ? 1 : 0;
    }
    return count;
  };
  const std::vector<std::string> keys{"L.Option (Alt)    R.Cmd (Menu / Ctrl)    A    S    K    and much more of it"};
  const int words = lit(paint::drawPlainLines(keys, 2000, 100, 1), 2000, 0, 2000);
  EXPECT_GT(words, 300);
  const auto narrow = paint::drawPlainLines(keys, 300, 200, 1);
  EXPECT_EQ(lit(narrow, 300, 0, 300), words) << "nothing is cut off";
  EXPECT_EQ(lit(narrow, 300, 0, 8) + lit(narrow, 300, 292, 300), 0);
  EXPECT_GT(lit(paint::drawPlainLines(keys, 4000, 200, 2), 4000, 0, 4000), 3 * words);
  EXPECT_EQ(paint::drawPlainLines({std::string(400, 'W'), "\xff"}, 10, 3, 1).size(), 30U);
}

}  // namespace
}  // namespace dormel
