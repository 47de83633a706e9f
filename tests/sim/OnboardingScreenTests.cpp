// Each screen of the first run by itself, in virtual time: when its elements come in, what its presses do and when they
// count, and what its timed scenes show.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <utility>

#include "assistant/AssentaAssistant.h"
#include "onboarding/OnbSpan.h"
#include "onboarding/OnboardingOptions.h"
#include "onboarding/OnboardingScreens.h"
#include "onboarding/OnboardingView.h"
#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

struct Answers {
  std::optional<int> late, want;
  std::optional<double> nights;
  std::vector<std::string> keeps{};
};

std::shared_ptr<OnboardingModel> modelOf(const Answers& answers) {
  auto model = std::make_shared<OnboardingModel>();
  model->late = answers.late;
  model->want = answers.want;
  model->nightsFactor = answers.nights;
  model->keeps = answers.keeps;
  return model;
}

void press(OnboardingScreen& screen, OnbElement::Kind kind, std::size_t part = 0) {
  screen.press(*screen.find(kind), part);
}

using enum OnbElement::Kind;

TEST(OnboardingScreens, ElementsComeInAtTheirTimesAndButtonsCountFromThenOn) {
  // The last moment of each, and its button's: 0 without one.
  const struct {
    Seconds last, button;
  } rows[] = {{4.2, 4.2},   {3, 3}, {2, 2},     {1.2, 0}, {2, 2},     {2.2, 2.2}, {5, 5},
              {17.3, 17.3}, {3, 3}, {2.6, 2.6}, {3, 3},   {6.4, 6.4}, {2.8, 2},   {5.4, 5.4}};
  for (const OnboardingBeat beat : ONBOARDING_BEATS) {
    SCOPED_TRACE(rawValue(beat));
    SimMachine machine;
    int finished = 0;
    const auto view = OnboardingView::createPreview({{}, [&] { ++finished; }});
    view->advance(beat);
    machine.advance(30);
    view->onAppear();
    const auto screen = view->screen();
    const OnbElement* const button = screen->find(OnbElement::Kind::button);
    Seconds last = 0;
    Seconds pressable = 0;
    std::size_t before = 0;
    for (int i = 0; i <= 200; ++i) {
      std::size_t now = 0;
      for (const OnbElement& element : screen->elements()) now += element.on() ? 1 : 0;
      EXPECT_GE(now, before) << "one after the other";
      if (std::exchange(before, now) < now) last = i / 10.0;
      if (screen->find(chips) != nullptr && i == 15) press(*screen, chips);
      const bool counts = button != nullptr && screen->accepts(*button);
      if (counts && pressable == 0) pressable = i / 10.0;
      EXPECT_EQ(counts, pressable > 0) << i;
      machine.advance(0.1);
    }
    EXPECT_EQ(last, rows[rawValue(beat)].last);
    EXPECT_EQ(pressable, rows[rawValue(beat)].button);
    if (button == nullptr) continue;
    screen->press(*button);
    EXPECT_TRUE(finished == 1 || view->beat() != beat);
    EXPECT_FALSE(screen->isShown());
    screen->press(*button);
    EXPECT_LE(finished, 1) << "it has gone";
    view->screen()->disappear();
    EXPECT_EQ(machine.timeline.repeatingTimers(), 0);
  }
}

TEST(OnboardingScreens, AScreenThatHasGoneStandsStill) {
  SimMachine machine;
  PromiseBeat screen([] {});
  screen.appear();
  machine.advance(1);
  int changes = 0;
  const Observation observation = screen.observe([&] { ++changes; });
  screen.disappear();
  machine.advance(60);
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(screen.elapsed(), 1);
  EXPECT_TRUE(screen.find(headline)->on());
  EXPECT_FALSE(screen.find(sub)->on());
}

TEST(OnboardingScreens, HeadlinesMarkEmphasisWithAsterisks) {
  const struct {
    const char* text;
    std::vector<OnbSpan> spans;
  } rows[] = {
      {"When do you *want* to be asleep?", {{"When do you "}, {"want", true}, {" to be asleep?"}}},
      {"*All* of *it*", {{"All", true}, {" of "}, {"it", true}}},
      {"5 * 3", {{"5 * 3"}}},
      {"a ** b", {{"a ** b"}}},
      {"*a* *", {{"a", true}, {" *"}}},
      {"", {}},
  };
  for (const auto& row : rows) EXPECT_EQ(headlineSpans(row.text), row.spans) << row.text;
  EXPECT_EQ(plainText(headlineSpans("When do you *want* it?")), "When do you want it?");
}

TEST(OnboardingScreens, TheWheelTurnsByRowsScrollingAndArrows) {
  constexpr KeyCode DOWN = 125;
  constexpr KeyCode UP = 126;
  enum Kind { scroll, turn, key, row, wait };
  struct Act {
    Kind kind;
    double value;
  };
  const auto both = [](std::vector<Act> first, const std::vector<Act>& then) {
    first.insert(first.end(), then.begin(), then.end());
    return first;
  };
  const auto parts = [](int count, double eighths, double pause) {
    std::vector<Act> acts;
    for (int i = 0; i < count; ++i) acts.insert(acts.end(), {{turn, eighths}, {wait, pause}});
    return acts;
  };
  const struct {
    const char* name;
    int initial;
    std::vector<Act> acts;
    int selection;
  } rows[] = {
      {"down stops at the last", 26, {{key, DOWN}, {key, DOWN}, {key, DOWN}}, 28},
      {"up stops at the first", 24, {{key, UP}, {key, UP}}, 23},
      {"no such option: as the first", 99, {{key, DOWN}}, 24},
      {"other keys", 25, {{key, 123}, {key, 124}, {key, 36}}, 25},
      {"a row", 25, {{row, 4}}, 27},
      {"no row", 25, {{row, 6}}, 25},
      {"a notch towards the user", 25, {{scroll, -15}}, 26},
      {"small deltas never, nor do they delay",
       25,
       {{scroll, 2}, {wait, 1}, {scroll, 1.9}, {wait, 0.05}, {scroll, -9}},
       26},
      {"two within 0.1 s are one", 25, {{scroll, -9}, {wait, 0.1}, {scroll, -9}, {wait, 0.13}, {scroll, -9}}, 27},
      {"not a number", 25, {{scroll, std::nan("")}, {turn, std::nan("")}}, 25},
      {"a whole notch", 25, {{turn, -120}, {wait, 0.2}, {turn, 120}, {wait, 0.2}, {turn, 120}}, 24},
      {"a notch in eight parts, however slowly", 25, parts(8, -15, 0.15), 26},
      {"three notches in parts", 23, parts(24, -15, 0.15), 26},
      {"three parts, and later three", 25, both(parts(3, -15, 0.15), {{wait, 1.1}, {turn, -45}}), 25},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    SimMachine machine;
    machine.windows.giveFocusToOrdinaryWindow();
    WheelQuestionBeat screen(OnboardingBeat::q1Latest, "?", onboardingOptions::latest(), row.initial, "", [](int) {});
    OnbWheel& turned = screen.wheel();
    const auto pressKey = [&](KeyCode key) { return machine.windows.deliverKey({EventType::keyDown, key, 0}); };
    const auto act = [&] {
      for (const Act& each : row.acts) {
        if (each.kind == Kind::scroll) turned.scroll(each.value);
        if (each.kind == Kind::turn) turned.turn(each.value);
        if (each.kind == Kind::key) pressKey(static_cast<KeyCode>(each.value));
        if (each.kind == Kind::row) press(screen, wheel, static_cast<std::size_t>(each.value));
        if (each.kind == Kind::wait) machine.advance(each.value);
      }
    };
    act();
    screen.appear();
    machine.advance(1.19);
    turned.keyDown(DOWN);
    EXPECT_EQ(turned.selection(), row.initial) << "it has not come in";
    machine.advance(0.02);
    act();
    EXPECT_EQ(turned.selection(), row.selection);
    EXPECT_TRUE(turned.keyDown(UP)) << "taken";
    EXPECT_FALSE(turned.keyDown(36)) << "left to the others";
    const int last = turned.selection();
    screen.disappear();
    act();
    EXPECT_EQ(turned.selection(), last) << "it has let go";
  }
}

TEST(OnboardingScreens, TheFirstPickCountsAndIsSeenForAMoment) {
  for (const bool leftMeanwhile : {false, true}) {
    SimMachine machine;
    std::vector<double> picked;
    QuestionBeat screen(OnboardingBeat::q2Nights, "?", onboardingOptions::nights(),
                        [&](double value) { picked.push_back(value); });
    screen.appear();
    machine.advance(1.1);
    press(screen, choice, 0);
    machine.advance(0.2);
    const auto& chosen = screen.find(choice)->chosen;
    EXPECT_TRUE(chosen->empty()) << "it has not come in";
    press(screen, choice, 9);
    press(screen, choice, 1);
    machine.advance(0.44);
    press(screen, choice, 2);
    EXPECT_EQ(*chosen, std::vector<std::size_t>{1});
    EXPECT_TRUE(picked.empty());
    if (leftMeanwhile) screen.disappear();
    machine.advance(2);
    EXPECT_EQ(picked, leftMeanwhile ? std::vector<double>{} : std::vector{4.0});
  }
}

TEST(OnboardingScreens, PicksAreToggledAndKeepTheirOrder) {
  SimMachine machine;
  std::vector<std::string> given{"none"};
  KeepsBeat screen([&](const std::vector<std::string>& picks) { given = picks; });
  screen.appear();
  machine.advance(10);
  enum { scrolling, chatting, movies, work, games, everything };
  const struct {
    int press;
    std::vector<std::string> picks;
  } rows[] = {{work, {"work"}},
              {everything, {"work", "everything"}},
              {movies, {"work", "everything", "movies & shows"}},
              {work, {"everything", "movies & shows"}},
              {work, {"everything", "movies & shows", "work"}},
              {everything, {"movies & shows", "work"}},
              {movies, {"work"}},
              {work, {}},
              {77, {}}};
  for (const auto& row : rows) {
    press(screen, chips, static_cast<std::size_t>(row.press));
    EXPECT_EQ(screen.picks(), row.picks);
    EXPECT_EQ(*screen.find(button)->enabled, !row.picks.empty());
  }
  press(screen, button);
  EXPECT_EQ(given, std::vector<std::string>{"none"});
  press(screen, chips, games);
  press(screen, button);
  EXPECT_EQ(given, std::vector<std::string>{"games"});
}

TEST(OnboardingScreens, TheMirrorCountsUpToWhatIsLost) {
  const struct {
    Answers answers;
    int target;
  } rows[] = {{{}, 10}, {{28, 22, 7.0}, 42}, {{26, 23, {}}, 10}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.target);
    SimMachine machine;
    MirrorBeat screen(*modelOf(row.answers), [] {});
    screen.appear();
    machine.advance(2.3);
    EXPECT_EQ(screen.shown(), 0);
    for (int frame = 1; frame <= 60; ++frame) {
      machine.advance(0.033);
      const double share = std::min(1.0, 0.033 * frame / 1.8);
      EXPECT_EQ(screen.shown(), std::lround(row.target * (1 - std::pow(1 - share, 3)))) << frame;
    }
    EXPECT_EQ(screen.shown(), row.target);
  }
  SimMachine machine;
  MirrorBeat left(*modelOf({}), [] {});
  left.appear();
  machine.advance(2.9);
  const int shown = left.shown();
  EXPECT_GT(shown, 0);
  EXPECT_LT(shown, 10);
  left.disappear();
  machine.advance(10);
  EXPECT_EQ(left.shown(), shown);

  MirrorBeat ahead(*modelOf({24, 25, 2.0}), [] {});
  EXPECT_EQ(ahead.find(figure), nullptr);
  EXPECT_EQ(*ahead.find(sub)->text, "You get to bed by midnight, and you want to be asleep by 1 AM.");
}

/// "phase, held keys, where the ring goes, may go on" at a moment of the scene.
std::string sceneOf(const HowItWorksBeat& screen) {
  std::ostringstream text;
  text << screen.phase() << ' ' << screen.heldCount() << ' ' << screen.ringProgress() << ' '
       << (screen.canContinue() ? "go" : "wait");
  return text.str();
}

TEST(OnboardingScreens, ANightIsPlayedInSeventeenSeconds) {
  const struct {
    Seconds time;
    const char* scene;
  } rows[] = {{1.19, "0 0 0 wait"},  {1.21, "1 0 0 wait"},  {5.29, "1 0 0 wait"},  {5.31, "2 0 0 wait"},
              {5.91, "2 1 0 wait"},  {6.11, "2 2 0 wait"},  {6.31, "2 3 0 wait"},  {6.51, "2 4 0 wait"},
              {6.71, "2 5 0 wait"},  {10.29, "2 5 0 wait"}, {10.31, "3 5 0 wait"}, {10.79, "3 5 0 wait"},
              {10.81, "3 5 1 wait"}, {15.29, "3 5 1 wait"}, {15.31, "4 5 1 wait"}, {17.29, "4 5 1 wait"},
              {17.31, "4 5 1 go"},   {60, "4 5 1 go"}};
  const auto play = [](SimMachine& machine, HowItWorksBeat& screen, Seconds until) {
    machine.advance(until - screen.elapsed());
  };
  SimMachine machine;
  HowItWorksBeat screen(*modelOf({}), [] {});
  screen.appear();
  for (const auto& row : rows) {
    play(machine, screen, row.time);
    EXPECT_EQ(sceneOf(screen), row.scene) << row.time;
  }

  HowItWorksBeat left(*modelOf({}), [] {});
  left.appear();
  machine.advance(6);
  left.disappear();
  machine.advance(60);
  EXPECT_EQ(sceneOf(left), "2 1 0 wait");

  HowItWorksBeat late(*modelOf({}), [] {});
  late.appear();
  machine.stallMain(10.5);
  machine.advance(10.6);
  EXPECT_EQ(sceneOf(late), "3 5 0 wait") << "what was missed is made up for";

  const struct {
    std::optional<int> want;
    const char* clock;
    const char* caption;
  } wants[] = {{{}, "12:00", "At midnight, your screen locks."}, {25, "1:00", "At 1 AM, your screen locks."}};
  for (const auto& want : wants) {
    const HowItWorksBeat scene(*modelOf({{}, want.want, {}}), [] {});
    EXPECT_EQ(scene.clock() + scene.caption(), std::string(want.clock) + want.caption);
  }
}

TEST(OnboardingScreens, ThePermissionIsNoticedWithinASecond) {
  SimMachine machine;
  machine.accessibility.setTrusted(false);
  int gone = 0;
  AccessibilityBeat screen([&] { ++gone; });
  press(screen, permission);
  screen.appear();
  machine.advance(2.1);
  press(screen, permission);
  EXPECT_FALSE(AssentaAssistant::shared().activePanel()) << "the button has not come in";
  machine.advance(1.5);
  press(screen, button);
  press(screen, permission);
  EXPECT_EQ(AssentaAssistant::shared().activePanel(), AssentaPanel::accessibility);
  machine.journal.clear();
  machine.accessibility.setTrusted(true);
  machine.advance(0.3);
  EXPECT_FALSE(screen.granted());
  EXPECT_EQ(gone, 0);
  machine.advance(0.2);
  EXPECT_TRUE(screen.granted());
  EXPECT_FALSE(AssentaAssistant::shared().activePanel());
  EXPECT_EQ(machine.journal.lines().size(), 1U) << "activated, once";
  press(screen, permission);
  machine.advance(5);
  EXPECT_EQ(machine.journal.lines().size(), 1U);
  machine.accessibility.setTrusted(false);
  machine.advance(1);
  EXPECT_FALSE(screen.accepts(*screen.find(button))) << "taken back";
  press(screen, permission);
  EXPECT_TRUE(AssentaAssistant::shared().activePanel());
  screen.disappear();
  EXPECT_FALSE(AssentaAssistant::shared().activePanel()) << "left";
  machine.accessibility.setTrusted(true);
  machine.advance(5);
  EXPECT_FALSE(screen.granted());
}

TEST(OnboardingScreens, TheWordmarksOpenTheirPapers) {
  SimMachine machine;
  ScienceBeat screen([] {});
  screen.appear();
  machine.advance(1);
  press(screen, sources, 0);
  machine.advance(1);
  EXPECT_TRUE(machine.journal.lines().empty());
  for (std::size_t i = 0; i < 5; ++i) press(screen, sources, i);
  ASSERT_EQ(machine.journal.lines().size(), 4U);
  for (const std::string& line : machine.journal.lines()) EXPECT_NE(line.find("open https://doi.org/10."), line.npos);
}

}  // namespace
}  // namespace dormel
