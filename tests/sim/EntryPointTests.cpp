// What kind of run it is, by its arguments, and what each says and leaves.
#include <gtest/gtest.h>

#include "tests/sim/Program.h"

namespace dormel {
namespace {

using Lines = Program::Lines;

const std::string COMPLETE = "default onboardingComplete = ";
const std::string WRITE = "write ~/Library/LaunchAgents/" + std::string(BUNDLE_IDENTIFIER) + ".plist";

TEST(EntryPoint, OneShotCommands) {
  const Lines setUp{COMPLETE + "true", WRITE, BOOTOUT + " = 3", BOOTSTRAP + " = 0",
                    "out: Setup complete — agent installed."};
  const Lines removed{BOOTOUT + " = 3", COMPLETE + "false", "out: Agent uninstalled, onboarding reset."};
  const Lines untrusted{"write ~/Library/Logs/Dormel/ax-probe.txt", "out: AX: not trusted"};
  const struct {
    Lines arguments;
    Lines effects;
    int status;
    const char* probe = "";
    bool refused = false;
    bool trusted = false;
  } rows[] = {
      {{"--setup"}, setUp, 0},
      {{"--setup"},
       {COMPLETE + "true", WRITE, BOOTOUT + " = 3", BOOTSTRAP + " = 5",
        "out: AgentManager: bootstrap FAILED (exit 5) — agent NOT loaded, Dormel will not fire tonight",
        "out: Setup FAILED — agent not installed."},
       1,
       "",
       true},
      {{"--uninstall"}, removed, 0},
      {{"--check-ax"}, untrusted, 1, "not trusted /Applications/Dormel.app\n"},
      {{"--check-ax"},
       {"write ~/Library/Logs/Dormel/ax-probe.txt", "out: AX: TRUSTED"},
       0,
       "TRUSTED /Applications/Dormel.app\n",
       false,
       true},
      {{"--version"}, {"out: Dormel 1.0 (1)"}, 0},
      // The order of the commands decides, not that of the arguments; only whole arguments count.
      {{"--uninstall", "--setup"}, setUp, 0},
      {{"--check-ax", "x", "--uninstall"}, removed, 0},
      {{"--scheduled", "--check-ax"}, untrusted, 1, "not trusted /Applications/Dormel.app\n"},
  };
  for (const auto& row : rows) {
    Program program;
    program.machine.accessibility.setTrusted(row.trusted);
    program.machine.scheduler.setBootstrapFailure(row.refused ? std::optional(5) : std::nullopt);
    program.machine.defaults.putBoolean(defaultsKey::debugLoggingEnabled, false);
    std::string name = "start";
    for (const std::string& argument : row.arguments) name += " " + argument;
    program.machine.launch(row.arguments);
    Lines expected = row.effects;
    expected.insert(expected.begin(), name);
    expected.push_back("exit " + std::to_string(row.status));
    EXPECT_EQ(program.effects(), expected);
    EXPECT_EQ(program.machine.files.content("/home/user/Library/Logs/Dormel/ax-probe.txt"), row.probe) << name;
  }
}

TEST(EntryPoint, SaysThatACopyInTheWrongPlaceWillNotLock) {
  Program program("/home/user/Downloads/Dormel.app");
  program.machine.launch({"--setup"});
  EXPECT_EQ(program.machine.output.errors(),
            (Lines{"Dormel: This copy will not lock: it is not in your Applications folder. "
                   "Open it once, and it offers to move itself."}));
}

TEST(EntryPoint, HelpsInTheLanguageOfItsUser) {
  Program program;
  program.machine.texts.setMarked(true);
  program.open({"--help"});
  const std::string said = program.effects().at(1);
  EXPECT_TRUE(said.starts_with("out: ‹Dormel locks") && said.ends_with("five minutes.›")) << said;
}

TEST(EntryPoint, AnArgumentNobodyKnowsOpensTheWindowAndIsNamed) {
  Program program;
  program.arm();
  program.open({"--Setup", "-psn_0_1"});
  EXPECT_EQ(program.machine.output.errors(),
            (Lines{"Dormel: unknown argument --Setup; see --help", "Dormel: unknown argument -psn_0_1; see --help"}));
  EXPECT_NE(program.machine.mainWindows.front(), nullptr);
}

}  // namespace
}  // namespace dormel
