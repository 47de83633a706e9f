// A client of speech-dispatcher, by the Speech Synthesis Interface Protocol on the session's socket. Nothing here
// waits: a server that does not answer is left alone, and what could not be said in time is dropped for what is newer.
// Main thread only.
#pragma once

#include <deque>
#include <optional>
#include <string>

#include "platform/linux/loop/EventLoop.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::speech {

/// Where this session's server listens, by the variables that its own clients go by.
[[nodiscard]] std::string serverSocket();

class SpeechDispatcher {
 public:
  /// `startServer` has a server come up that was not there; it is asked once for each time that none was found. `loop`
  /// outlives this.
  SpeechDispatcher(EventLoop& loop, std::string socket, Task startServer);
  SpeechDispatcher(const SpeechDispatcher&) = delete;
  SpeechDispatcher& operator=(const SpeechDispatcher&) = delete;
  ~SpeechDispatcher() = default;

  /// Says it instead of whatever is still to be said. `language`: "de", "de_AT".
  void say(const std::string& text, const std::string& language);

 private:
  struct Message {
    std::string text;
    std::string language;
  };

  bool connect();
  void drop();
  void tryLater();
  void next();
  void send(const std::string& bytes);
  void read();
  void answered(const std::string& line);

  EventLoop& loop_;
  const std::string socket_;
  const Task startServer_;
  posix::FileDescriptor connection_;
  EventLoop::Watch watch_;
  std::string received_;
  std::deque<std::string> commands_;     // the first is being answered while `isBusy_`
  std::optional<std::string> speaking_;  // the text that follows the command to speak
  std::optional<Message> wanted_;
  std::string language_;
  bool isBusy_ = false;
  int tries_ = 0;
  Timer retry_;
  Timer patience_;
};

}  // namespace dormel::speech
