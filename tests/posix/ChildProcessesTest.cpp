// Children that are waited for, children that live on, and what they are told.
#include <gtest/gtest.h>

#include <cerrno>
#include <sstream>

#include "app/AppInstaller.h"
#include "platform/linux/posix/PosixChildProcesses.h"
#include "tests/posix/Child.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel {
namespace {

TEST(PosixChildProcesses, ReportsHowTheToolEnded) {
  posix::PosixChildProcesses children(posix::PosixChildProcesses::Tools{{"/bin/launchctl", "/bin/false"}});
  const struct {
    const char* tool;
    std::vector<std::string> arguments;
    std::int32_t status;
    const char* errors;
  } cases[] = {{"/bin/sh", {"-c", "exit 37"}, 37, ""},
               {"/bin/sh", {"-c", "kill -9 $$"}, 137, ""},
               {"/bin/sh", {"-c", "[ \"$1\" = \"a 'b' \\$c\" ]", "sh", "a 'b' $c"}, 0, ""},
               {"/bin/sh", {"-c", "echo out; echo bad >&2; exit 2"}, 2, "bad\n"},
               {"/nowhere/at/all", {}, -1, ""},
               {"/bin/launchctl", {}, 1, ""}};
  for (const auto& example : cases) {
    EXPECT_EQ(children.run(example.tool, example.arguments), example.status);
    const auto outcome = children.runHearingErrors(example.tool, example.arguments);
    EXPECT_EQ(outcome.status, example.status);
    EXPECT_EQ(outcome.errors, example.errors);
  }
  // More than a pipe holds: the tool must not wait for us while we wait for it.
  EXPECT_EQ(children.runHearingErrors("/bin/sh", {"-c", "head -c 300000 /dev/zero >&2"}).errors.size(), 4096U);
  EXPECT_EQ(children.toolPath("/bin/launchctl"), "/bin/false");
  EXPECT_EQ(children.toolPath("/bin/sh"), "/bin/sh");
}

TEST(PosixChildProcesses, WhatIsStartedLivesOnByItself) {
  const TemporaryHome home;
  const std::string ready = home.path() + "/ready";
  const std::string script =
      "while kill -0 $1 2>/dev/null; do sleep 0.01; done; "
      "echo $(ps -o sess= -p $$) $(pwd) $(readlink /proc/$$/fd/1) > $2.part; mv $2.part $2";
  const auto started = [&](const char* tool) {
    return statusOf([&] {
      const std::string self = std::to_string(::getpid());
      const bool begun = posix::PosixChildProcesses().start(tool, {"-c", script, "sh", self, ready});
      // Nothing to reap: whoever starts something never hears of its end.
      return begun ? (::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD ? 0 : 2) : 1;
    });
  };
  EXPECT_EQ(started("/bin/sh"), 0);
  std::istringstream seen(awaited(ready));
  pid_t session = 0;
  std::string folder;
  std::string output;
  seen >> session >> folder >> output;
  EXPECT_GT(session, 0);
  EXPECT_NE(session, ::getsid(0)) << "closing the terminal would end it";
  EXPECT_EQ(folder, "/");
  EXPECT_EQ(output, "/dev/null");
  for (const char* impossible : {"/nowhere/at/all", "/etc/passwd", "/etc"}) EXPECT_EQ(started(impossible), 1);
}

TEST(ShellWords, ArriveWholeWhateverTheyHold) {
  const TemporaryHome home;
  posix::PosixChildProcesses children;
  std::string everyByte;
  for (int byte = 1; byte < 256; ++byte) everyByte += static_cast<char>(byte);
  const std::string words[] = {"/Applications/Night's Dormel.app",
                               "'",
                               "'''",
                               "it's \"quoted\" and 'quoted'",
                               "two  spaces ",
                               "line\nbreak\n",
                               "-rf",
                               "--",
                               "",
                               "$HOME `id` $(id) ${x} \\ \\\\ \\n ~ * ? [a] {a,b} ! # & | ; < > ( )",
                               "Schlafmütze – 夜 – ночь 🌙",
                               std::string(200, 'x') + "'" + std::string(200, ' '),
                               everyByte};
  const std::string heard = home.path() + "/heard";
  for (const std::string& word : words) {
    SCOPED_TRACE(word);
    const std::string quoted = AppInstaller::shellQuoted(word);
    const std::string text =
        "set -- " + quoted + "; printf '%s' \"$1\" > " + AppInstaller::shellQuoted(heard) + "; exit $#";
    EXPECT_EQ(children.run("/bin/sh", {"-c", text}), 1) << "one word";
    EXPECT_EQ(contents(heard), word);
  }
}

}  // namespace
}  // namespace dormel
