// How another program is started. Any thread.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace dormel::posix {

/// The null-terminated array that the exec calls take. The texts are the caller's.
[[nodiscard]] std::vector<char*> argumentArray(const std::string& path, const std::vector<std::string>& arguments);

/// Which descriptors of ours are its standard output and standard error; -1: /dev/null, as its standard input always
/// is.
struct OutputStreams {
  int output = -1;
  int errors = -1;
};

/// Starts a program with the usual signal dispositions; what we do with signals is ours. -1 when that fails.
[[nodiscard]] pid_t spawn(const std::string& path, const std::vector<std::string>& arguments,
                          const OutputStreams& streams);

}  // namespace dormel::posix
