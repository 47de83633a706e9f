// What the update helper found out, as one line of text between it and the program, and as a sentence for people.
// Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dormel::updates {

struct UpdateResult {
  enum class Kind {
    nothing,        ///< there was nothing to do
    current,        ///< nothing newer is offered
    available,      ///< something newer is offered, and was left where it is
    administrator,  ///< the same, because the bundle is not this user's to replace
    fetching,       ///< on the way; another result follows
    ready,          ///< verified and kept, to be put in place
    installed,      ///< put in place
    unreachable,    ///< no answer, or none that counts as one
    unreadable,     ///< the answer is no list of updates
    notFetched,     ///< the archive did not come, or not in its announced length
    notGenuine,     ///< the archive's signature is not the maker's
    unsuitable,     ///< the archive is genuine but not the bundle that was announced
    notKept,        ///< the disk did not take it
    broken,         ///< the helper did not work at all
  };
  Kind kind = Kind::broken;
  std::string version{};  ///< the update's short version, where one is known

  friend bool operator==(const UpdateResult&, const UpdateResult&) = default;
};

/// One line without its line feed, and back; nothing when it is not one.
[[nodiscard]] std::string write(const UpdateResult& result);
[[nodiscard]] std::optional<UpdateResult> parseResult(std::string_view line);

/// One friendly sentence or two; empty for `nothing`. `own` is the running program's short version.
[[nodiscard]] std::string sentence(const UpdateResult& result, const std::string& own);

}  // namespace dormel::updates
