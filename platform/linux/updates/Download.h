// Fetching one file over HTTPS, to its end, in the calling thread. Nothing touches the disk. One at a time.
#pragma once

#include <cstddef>
#include <string>

namespace dormel::updates {

/// How long an answer may take, in seconds.
struct Timeouts {
  long idle = 30;       ///< without a byte, to connect included; noticed five seconds later
  long document = 120;  ///< for a list of updates in all
  long archive = 3600;  ///< for an archive in all
};

struct Fetched {
  enum class Kind { whole, tooLarge, failed };
  Kind kind = Kind::failed;
  std::string bytes{};    ///< the file, when it came whole
  std::string trouble{};  ///< what went wrong otherwise, for the operator
};

class Download {
 public:
  /// `agent` is how we introduce ourselves.
  Download(std::string agent, Timeouts timeouts);
  Download(const Download&) = delete;
  Download& operator=(const Download&) = delete;
  ~Download();

  /// The file at an allowed address, of `largest` bytes at most, within `seconds`. Follows five redirects at most, to
  /// allowed addresses and never from HTTPS to HTTP.
  [[nodiscard]] Fetched fetch(const std::string& address, std::size_t largest, long seconds) const;

 private:
  const std::string agent_;
  const Timeouts timeouts_;
};

}  // namespace dormel::updates
