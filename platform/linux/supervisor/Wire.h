// What travels between the supervisor and its callers: one message each way, a list of words without NUL.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace dormel::jobs::supervisor {

using Words = std::vector<std::string>;

/// The questions, first word of a message. The first word of every answer is an exit status in decimal.
namespace verb {
inline constexpr const char* print = "print";    ///< answered by names and values in turn
inline constexpr const char* unload = "unload";  ///< answered when the job has ended
/// Followed by the property list's path and the session environment; an error's text may follow the status.
inline constexpr const char* load = "load";
}  // namespace verb

bool sendWords(int connection, const Words& words);
/// Nothing when no whole message came within `timeout` seconds.
[[nodiscard]] std::optional<Words> receiveWords(int connection, int timeout);

}  // namespace dormel::jobs::supervisor
