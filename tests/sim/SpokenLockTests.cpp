// The lock as somebody hears it.
#include <gtest/gtest.h>

#include "tests/sim/NightFixture.h"

namespace dormel {
namespace {

using Lines = std::vector<std::string>;

class SpokenLockTest : public testing::Test {
 protected:
  /// What was said since the last time this was asked, with the time of day.
  Lines heard() {
    Lines lines = machine.journal.lines();
    machine.journal.clear();
    std::erase_if(lines, [](const std::string& line) { return line.find(" says: ") == std::string::npos; });
    for (std::string& line : lines) line.replace(line.find(" says: "), 7, " ");
    return lines;
  }
  [[nodiscard]] std::string name(std::size_t key) const {
    const RequiredKey& asked = night.controller().requiredKeys().at(key);
    if (!asked.isModifier) return asked.label;
    const std::string rest = asked.label.substr(2);
    return (asked.label[0] == 'L' ? "left " : "right ") + (rest == "Ctrl"  ? "Control"
                                                           : rest == "Cmd" ? "Command"
                                                                           : rest);
  }
  [[nodiscard]] std::string names() const {
    return name(0) + ", " + name(1) + ", " + name(2) + ", " + name(3) + ", " + name(4);
  }
  [[nodiscard]] KeyCode code(std::size_t key) const { return night.controller().requiredKeys().at(key).keyCode; }

  NightFixture night;
  SimMachine& machine = night.machine;
};

TEST_F(SpokenLockTest, SaysAllThatIsShownAndRepeatsItself) {
  machine.speech.setReaderOn(true);
  night.begin("2026-11-16 22:00:00");
  EXPECT_EQ(heard(), Lines{"22:00:00.000 This Mac is locked. To open it, hold these keys together for 30 seconds: " +
                           names() + ". Space gives you other keys."});
  machine.advanceTo("2026-11-16 22:00:45");
  EXPECT_EQ(heard(), (Lines{"22:00:20.000 Locked. Hold for 30 seconds: " + names() + ".",
                            "22:00:40.000 Locked. Hold for 30 seconds: " + names() + "."}));
  machine.keyboard.press(keyCode::space);
  machine.keyboard.release(keyCode::space);
  machine.settle();
  EXPECT_EQ(heard(), Lines{"22:00:45.000 New keys: " + names() + "."});

  machine.advanceTo("2026-11-16 22:01:00");
  for (std::size_t key = 0; key < 4; ++key) machine.keyboard.press(code(key));
  machine.keyboard.release(code(2));
  machine.advanceTo("2026-11-16 22:02:00");
  EXPECT_EQ(heard(), (Lines{"22:01:00.000 " + name(0) + ". 1 of 5.", "22:01:00.000 " + name(1) + ". 2 of 5.",
                            "22:01:00.000 " + name(2) + ". 3 of 5.", "22:01:00.000 " + name(3) + ". 4 of 5.",
                            "22:01:00.000 " + name(2) + " slipped. 3 of 5."}))
      << "and no repetition while a key is held";
  machine.keyboard.press(code(2));
  machine.keyboard.press(code(4));
  machine.advance(11);
  machine.keyboard.release(code(4));
  machine.advance(9);
  EXPECT_EQ(heard(), (Lines{"22:02:00.000 " + name(2) + ". 4 of 5.", "22:02:00.000 All five. Keep holding.",
                            "22:02:10.050 20 seconds.", "22:02:11.000 " + name(4) + " slipped. Hold all five again."}));

  machine.advanceTo("2026-11-16 22:03:00");
  machine.keyboard.press(code(4));
  machine.advance(31);
  machine.keyboard.releaseAll();
  machine.advanceTo("2026-11-16 22:08:29");
  Lines unlocked = heard();
  ASSERT_EQ(unlocked.size(), 7U);
  EXPECT_EQ(unlocked[4].substr(12), " Unlocked. Let go. It locks again in 5 minutes.");
  unlocked.erase(unlocked.begin() + 4);
  EXPECT_EQ(unlocked,
            (Lines{"22:03:00.000 All five. Keep holding.", "22:03:10.050 20 seconds.", "22:03:20.050 10 seconds.",
                   "22:03:25.050 5 seconds.", "22:07:30.050 It locks again in one minute.",
                   "22:08:20.050 It locks again in ten seconds."}));
  machine.advance(2);
  EXPECT_EQ(heard(), Lines{"22:08:30.050 This Mac is locked. To open it, hold these keys together for 60 seconds: " +
                           names() + ". Space gives you other keys."});
}

TEST_F(SpokenLockTest, IsSilentUntilAScreenReaderIsOn) {
  night.begin("2026-11-16 22:00:00");
  pressAll(machine, night.controller());
  machine.advance(25);
  machine.keyboard.releaseAll();
  machine.advance(60);
  EXPECT_EQ(heard(), Lines{});
  machine.speech.setReaderOn(true);
  machine.settle();
  EXPECT_EQ(heard().size(), 1U);
  machine.speech.setReaderOn(false);
  machine.advance(60);
  EXPECT_EQ(heard(), Lines{});
}

TEST(SpokenRehearsal, NamesTheKeysAsTheyArePrintedAndSaysHowItEnds) {
  SimMachine machine;
  for (const ModifierRow& row : LEFT_MODIFIERS) machine.layout.setLegend(row.keyCode, "Alt");
  machine.speech.setReaderOn(true);
  const auto session = ScreenManager::create();
  session->startTest(true, [] {});
  machine.settle();
  const std::string said = machine.journal.lines().back();
  EXPECT_NE(said.find("for 5 seconds: left Alt, "), std::string::npos) << said;
  EXPECT_TRUE(said.ends_with("This is a rehearsal. Escape ends it.")) << said;
  machine.keyboard.press(keyCode::escape);
  machine.settle();
  machine.journal.clear();
  machine.advance(30);
  EXPECT_EQ(machine.journal.text().find("says"), std::string::npos);
}

}  // namespace
}  // namespace dormel
