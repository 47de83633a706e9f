// The first run as a whole: the answers and what is made of them, where it resumes, what it stores, and its way through
// the program.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "onboarding/OnboardingScreens.h"
#include "tests/sim/Program.h"

namespace dormel {
namespace {

using Beat = OnboardingBeat;
using Kind = OnbElement::Kind;
using Lines = Program::Lines;

constexpr const char* KEYS[] = {defaultsKey::onboardingBeat,   defaultsKey::onboardingLate,
                                defaultsKey::onboardingNights, defaultsKey::onboardingWant,
                                defaultsKey::onboardingKeeps,  defaultsKey::onboardingLock};

void press(OnboardingScreen& screen, Kind kind, std::size_t part = 0) {
  if (const OnbElement* element = screen.find(kind)) screen.press(*element, part);
}

TEST(OnboardingModel, MakesFiguresAndSentencesOfTheAnswers) {
  constexpr int LARGE = std::numeric_limits<int>::max();
  const struct {
    std::optional<int> late, want;
    std::optional<double> nights;
    std::vector<std::string> keeps;
    std::optional<int> hours;
    const char* line;
    int lock;
  } rows[] = {
      {{}, {}, {}, {"work"}, {}, "You're up too late, too often.", 24},
      {25, {}, {}, {}, {}, "You're up too late, too often.", 24},
      {26, 23, 4.0, {"scrolling"}, 12, "You're up until about 2 AM, several nights a week. Mostly scrolling.", 23},
      {25, 24, 2.0, {"everything", "work"}, 2, "You're up until about 1 AM, some nights.", 24},
      {28, 22, 7.0, {"work", "games"}, 42, "You're up until about 4 AM, most nights. Mostly work.", 22},
      {23, 21, 0.75, {"work", "everything"}, 2, "You're up until about 11 PM, some nights.", 22},
      {24, 24, 7.0, {}, {}, "You're up until about midnight, most nights.", 24},
      {24, 27, 7.0, {}, {}, "You're up until about midnight, most nights.", 26},
      {LARGE, 1, 1e300, {}, LARGE, "You're up until about 7 AM, most nights.", 22},
  };
  SimMachine machine;
  for (const auto& row : rows) {
    OnboardingModel model;
    model.late = row.late;
    model.want = row.want;
    model.nightsFactor = row.nights;
    model.keeps = row.keeps;
    EXPECT_EQ(model.weeklyHours(), row.hours) << row.line;
    EXPECT_EQ(model.mirrorLine(), row.line);
    EXPECT_EQ(model.suggestedLock(), row.lock) << row.line;
  }
}

/// The answers of a model in one line.
std::string shown(const OnboardingModel& model) {
  std::ostringstream text;
  text << model.late->value_or(0) << ' ' << model.nightsFactor->value_or(0) << ' ' << model.want->value_or(0) << ' '
       << model.lockNight << " [";
  for (const std::string& keep : *model.keeps) text << keep << ';';
  text << ']';
  return text.str();
}

TEST(OnboardingModel, DamagedAnswersReadAsAbsent) {
  using Value = PropertyListValue;
  const auto whole = [](std::int64_t number) { return Value{number}; };
  const char* const late = defaultsKey::onboardingLate;
  const char* const nights = defaultsKey::onboardingNights;
  const char* const keeps = defaultsKey::onboardingKeeps;
  const char* const lock = defaultsKey::onboardingLock;
  const struct {
    const char* key;
    Value value;
    const char* shown;
  } rows[] = {
      {late, whole(25), "25 0 0 24 []"},
      {late, whole(0), "0 0 0 24 []"},
      {late, whole(std::numeric_limits<std::int64_t>::max()), "0 0 0 24 []"},
      {late, whole((std::int64_t{1} << 32) + 25), "0 0 0 24 []"},
      {late, {true}, "0 0 0 24 []"},
      {defaultsKey::onboardingWant, whole(23), "0 0 23 24 []"},
      {defaultsKey::onboardingWant, {2.5e300}, "0 0 0 24 []"},
      {nights, {4.0}, "0 4 0 24 []"},
      {nights, whole(7), "0 7 0 24 []"},
      {nights, {-1.0}, "0 0 0 24 []"},
      {nights, {std::nan("")}, "0 0 0 24 []"},
      {nights, {PropertyListDictionary{}}, "0 0 0 24 []"},
      {keeps, {PropertyListArray{{std::string("work")}, {std::string("games")}}}, "0 0 0 24 [work;games;]"},
      {keeps, {PropertyListArray{{std::string("work")}, whole(3)}}, "0 0 0 24 []"},
      {keeps, {std::string("work")}, "0 0 0 24 []"},
      {lock, whole(26), "0 0 0 26 []"},
      {lock, whole(0), "0 0 0 24 []"},
      {lock, whole(std::int64_t{1} << 40), "0 0 0 24 []"},
  };
  for (const auto& row : rows) {
    SimMachine machine;
    machine.defaults.writeFromOutside(row.key, row.value);
    EXPECT_EQ(shown(*OnboardingModel::restored()), row.shown) << row.key;
    for (const Beat beat : ONBOARDING_BEATS) {  // every screen can be made of it
      machine.defaults.putInteger(defaultsKey::onboardingBeat, rawValue(beat));
      const auto view = OnboardingView::create({});
      view->advance(beat);
      view->onAppear();
      machine.advance(20);
    }
  }
}

TEST(Onboarding, WheelsStartAtAnAnswerThatTheyOffer) {
  const struct {
    std::int64_t late, want;
    int lateStart, wantStart;
  } rows[] = {{26, 22, 26, 22}, {22, 26, 25, 24}, {77, 1, 25, 24}, {-1, -1, 25, 24}};
  for (const auto& row : rows) {
    SimMachine machine;
    machine.defaults.putInteger(defaultsKey::onboardingLate, row.late);
    machine.defaults.putInteger(defaultsKey::onboardingWant, row.want);
    const auto view = OnboardingView::create({});
    view->onAppear();
    for (const auto& [beat, start] : {std::pair{Beat::q1Latest, row.lateStart}, {Beat::q3Want, row.wantStart}}) {
      view->advance(beat);
      machine.advance(5);
      const auto screen = std::static_pointer_cast<WheelQuestionBeat>(view->screen());
      EXPECT_EQ(screen->wheel().selection(), start);
      press(*screen, Kind::button);
    }
    EXPECT_EQ(*view->model().late, row.lateStart) << "what was shown is handed over";
  }
}

TEST(Onboarding, ResumesAtTheLastOfThreePlaces) {
  for (std::int64_t raw = -3; raw <= 16; ++raw) {
    SimMachine machine;
    machine.defaults.putInteger(defaultsKey::onboardingBeat, raw);
    const Beat expected = raw == 12 || raw == 13  ? Beat::schedule
                          : raw >= 8 && raw <= 11 ? Beat::accessibility
                                                  : Beat::brand;
    EXPECT_EQ(resumePoint(), expected) << raw;
    EXPECT_EQ(onboardingBeat(raw).has_value(), raw >= 0 && raw <= 13);
  }
  SimMachine machine;
  EXPECT_EQ(resumePoint(), Beat::brand);
  machine.defaults.putInteger(defaultsKey::onboardingBeat, (std::int64_t{1} << 32) + 12);
  EXPECT_EQ(resumePoint(), Beat::brand);
  machine.defaults.writeFromOutside(defaultsKey::onboardingBeat, PropertyListValue{std::string("12")});
  EXPECT_EQ(resumePoint(), Beat::brand);
}

TEST(Onboarding, GoesBackAmongTheQuestionsOnly) {
  SimMachine machine;
  const auto view = OnboardingView::create({});
  view->onAppear();
  for (const Beat beat : ONBOARDING_BEATS) {
    view->advance(beat);
    const bool leadsBack = beat >= Beat::q2Nights && beat <= Beat::mirror;
    view->goBack();
    EXPECT_EQ(rawValue(view->beat()), rawValue(beat) - (leadsBack ? 1 : 0));
  }
  // A pick that was still to be seen goes with its screen.
  view->advance(Beat::q2Nights);
  machine.advance(2);
  press(*view->screen(), Kind::choice);
  view->goBack();
  machine.advance(2);
  EXPECT_EQ(view->beat(), Beat::q1Latest);
  EXPECT_FALSE(*view->model().nightsFactor);
}

/// A user who answers everything as it comes.
class Stranger {
 public:
  explicit Stranger(SimMachine& machine) : machine_(machine) {}

  [[nodiscard]] std::shared_ptr<OnboardingView> view() const {
    const auto front = machine_.mainWindows.front();
    return front && front->kind() == ViewKind::onboarding ? std::static_pointer_cast<OnboardingView>(front) : nullptr;
  }
  /// Answers the current screen, then presses its button.
  void goOn() {
    machine_.advance(20);
    machine_.run([this] {
      const auto screen = view()->screen();
      for (const auto& [kind, part] : {std::pair{Kind::choice, 2}, {Kind::chips, 3}, {Kind::chips, 0}}) {
        press(*screen, kind, static_cast<std::size_t>(part));
      }
      if (auto* question = dynamic_cast<WheelQuestionBeat*>(screen.get())) {
        screen->beat() == Beat::schedule ? question->wheel().select(1) : question->wheel().step(1);
      }
      press(*screen, Kind::button);
    });
    machine_.advance(1.3);
  }

 private:
  SimMachine& machine_;
};

/// A program that was never set up.
struct FirstRun : Program {
  FirstRun() {
    for (const char* key : {defaultsKey::onboardingComplete, defaultsKey::blockStartHour, defaultsKey::blockEndHour}) {
      machine.defaults.writeFromOutside(key, std::nullopt);
    }
    open();
    machine.journal.clear();
  }
  Stranger stranger{machine};

  /// What was stored since the last time this was asked.
  Lines stored() {
    Lines lines = effects();
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("default "); });
    for (std::string& line : lines) line.erase(0, sizeof "default " - 1);
    return lines;
  }
};

TEST(Onboarding, LeadsFromTheFirstScreenToAnArmedLock) {
  FirstRun program;
  for (const Beat beat : ONBOARDING_BEATS) {
    const auto view = program.stranger.view();
    ASSERT_TRUE(view);
    ASSERT_EQ(view->beat(), beat);
    if (beat == Beat::finale) {
      EXPECT_EQ(shown(view->model()), "26 7 25 23 [work;scrolling;]");
      break;
    }
    program.stranger.goOn();
    const Lines stored = program.stored();
    ASSERT_GE(stored.size(), 6U);
    EXPECT_EQ(stored.back(), "onboardingV2Beat = " + std::to_string(rawValue(beat) + 1));
    EXPECT_EQ(shown(*OnboardingModel::restored()), shown(view->model())) << "what was stored is what is there";
    if (beat == Beat::schedule) {
      EXPECT_EQ(stored.front(), "blockStartHour = 23");
      EXPECT_EQ(stored[1], "blockEndHour = 6");
    } else {
      EXPECT_EQ(stored.size(), 6U);
    }
  }
  EXPECT_FALSE(program.isArmed());
  program.stranger.goOn();
  EXPECT_TRUE(program.isArmed());
  EXPECT_TRUE(Config::onboardingComplete());
  EXPECT_EQ(program.stranger.view(), nullptr) << "the settings took its place";
  EXPECT_NE(program.machine.mainWindows.front(), nullptr);
  const Lines effects = program.effects();
  EXPECT_EQ(effects.back(), "out: Onboarding complete — scheduler armed (lock 23:00 → 6:00).");
}

TEST(Onboarding, TheDemoLocksAndTheNextScreenWaitsUnderneath) {
  FirstRun program;
  program.machine.run([&] { program.stranger.view()->advance(Beat::demo); });
  program.machine.advance(5);
  const auto screen = program.stranger.view()->screen();
  program.machine.accessibility.setTrusted(false);
  program.machine.run([&] { press(*screen, Kind::button); });
  EXPECT_EQ(program.stranger.view()->beat(), Beat::accessibility) << "it cannot start";

  program.machine.accessibility.setTrusted(true);
  program.machine.run([&] { program.stranger.view()->advance(Beat::demo); });
  program.machine.advance(5);
  const auto again = program.stranger.view()->screen();
  EXPECT_EQ(*again->find(Kind::sub)->text, "Your screen will lock.\nTo snooze, hold the keys for 5 seconds.");
  program.machine.run([&] { press(*again, Kind::button); });
  EXPECT_EQ(program.delegate().screenManager()->state(), SessionState::blocked);
  program.machine.run([&] { press(*again, Kind::button); });
  program.machine.advance(1.19);
  EXPECT_EQ(program.stranger.view()->beat(), Beat::demo) << "a second press changes nothing";
  program.machine.advance(0.02);
  EXPECT_EQ(program.stranger.view()->beat(), Beat::debrief);
  EXPECT_EQ(program.delegate().screenManager()->state(), SessionState::blocked);
  program.machine.advance(60);
  EXPECT_EQ(program.delegate().screenManager()->state(), SessionState::idle);
  EXPECT_EQ(program.stranger.view()->beat(), Beat::debrief);
}

TEST(Onboarding, APreviewReadsAndStoresNothing) {
  Program program;
  for (const char* key : KEYS) program.machine.defaults.putInteger(key, 12);
  program.machine.setWallClock("2026-11-16 12:00:00");
  program.arm();
  program.open();
  Stranger stranger(program.machine);
  program.machine.run([&] { program.delegate().showOnboardingPreview(); });
  program.machine.settle();
  program.machine.journal.clear();
  ASSERT_TRUE(stranger.view());
  EXPECT_EQ(shown(stranger.view()->model()), "0 0 0 24 []");
  for (const Beat beat : ONBOARDING_BEATS) {
    ASSERT_TRUE(stranger.view());
    EXPECT_EQ(stranger.view()->beat(), beat);
    stranger.goOn();
  }
  EXPECT_EQ(stranger.view(), nullptr) << "back in the settings";
  for (const std::string& line : program.effects()) {
    EXPECT_FALSE(line.starts_with("default ") || line.starts_with("run ")) << line;
  }
  EXPECT_EQ(Config::startHour(), 22);
}

}  // namespace
}  // namespace dormel
