// The process's arguments, program path first. Set once at start-up, before anything reads them.
#pragma once

#include <string>
#include <vector>

namespace dormel {

extern std::vector<std::string> cliArgs;

}  // namespace dormel
