#include <gtest/gtest.h>

#include <csignal>

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);  // as in the program: what is written to a server that hung up is lost, no more
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
