#include <gtest/gtest.h>

#include <csignal>

#include "platform/linux/x11/Reply.h"
#include "tests/x11/Desk.h"

namespace dormel::x11::test {
namespace {

constexpr int KEY_LEFT_CTRL = 29;
constexpr int KEY_LEFT_ALT = 56;
constexpr int KEY_BACKSPACE = 14;
constexpr int KEY_A = 30;

class LockdownTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(server->run({"setxkbmap", "-option", "terminate:ctrl_alt_bksp"}));
    ASSERT_TRUE(armed());
  }

  /// What all keyboards' keymaps have left of the server's own ways out.
  [[nodiscard]] std::string waysOut() const {
    std::string found;
    for (const char* device : {"3", "5"}) {  // the core keyboard and XTEST's
      const std::string command = "xkbcomp -i " + std::string(device) + " " + server->display() +
                                  " - 2>/dev/null | grep -E '^ *(actions\\[|key <)' -A3 | "
                                  "grep -oE 'Terminate\\(|SwitchScreen\\(|Private\\(' | sort | uniq -c | tr -s ' \\n' ' '";
      FILE* pipe = popen(command.c_str(), "r");
      char text[256] = "";
      if (std::fgets(text, sizeof text, pipe) != nullptr) found += device + std::string(":") + text;
      pclose(pipe);
    }
    return found;
  }
  [[nodiscard]] bool armed() {
    before = keyActions();
    return true;
  }
  std::vector<std::uint8_t> keyActions();
  void zap() {
    for (const int key : {KEY_LEFT_CTRL, KEY_LEFT_ALT, KEY_BACKSPACE}) server->press(key);
    for (const int key : {KEY_BACKSPACE, KEY_LEFT_ALT, KEY_LEFT_CTRL}) server->release(key);
  }

  std::unique_ptr<XServer> server = XServer::withTwoMonitors();
  std::vector<std::uint8_t> before;
};

}  // namespace
}  // namespace dormel::x11::test
