#include "app/CommandLine.h"

namespace dormel {

std::vector<std::string> cliArgs;

}  // namespace dormel
