// Speaking to somebody who does not see the screen. While a screen reader is on, whoever takes the keyboard from it has
// to say what it would have said. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Registration.h"

namespace dormel {

class Speech {
 public:
  virtual ~Speech() = default;

  /// Calls `handler` in a later turn once a screen reader is known to be on, and whenever that changes, while the
  /// registration lives. Nobody waits for the answer; where none comes, nothing is called.
  [[nodiscard]] virtual std::unique_ptr<Registration> followReader(std::function<void(bool isOn)> handler) = 0;

  /// Says it in the language of the texts, at once: what of ours is still being said is cut short. Never waits. Without
  /// anybody who can speak, nothing happens.
  virtual void say(const std::string& text) = 0;
};

}  // namespace dormel
