// Speaks by the session's speech server for as long as a screen reader is on. Costs nothing before it is asked for.
// Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "platform/Process.h"
#include "platform/Speech.h"
#include "platform/Texts.h"
#include "platform/linux/loop/EventLoop.h"
#include "platform/linux/speech/SpeechDispatcher.h"

namespace dormel::speech {

class DesktopSpeech final : public Speech {
 public:
  /// All outlive it.
  DesktopSpeech(EventLoop& loop, ChildProcesses& children, const Texts& texts);

  [[nodiscard]] std::unique_ptr<Registration> followReader(std::function<void(bool isOn)> handler) override;
  void say(const std::string& text) override;

 private:
  EventLoop& loop_;
  const Texts& texts_;
  SpeechDispatcher dispatcher_;
};

}  // namespace dormel::speech
