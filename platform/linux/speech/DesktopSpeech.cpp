#include "platform/linux/speech/DesktopSpeech.h"

#include <utility>

#include "platform/linux/freedesktop/Programs.h"
#include "platform/linux/speech/ScreenReader.h"

namespace dormel::speech {

DesktopSpeech::DesktopSpeech(EventLoop& loop, ChildProcesses& children, const Texts& texts)
    : loop_(loop), texts_(texts), dispatcher_(loop, serverSocket(), [&children] {
        // As its own clients do it: nothing happens where its user does not want that.
        if (const auto server = freedesktop::findProgram("speech-dispatcher")) children.start(*server, {"--spawn"});
      }) {}

std::unique_ptr<Registration> DesktopSpeech::followReader(std::function<void(bool isOn)> handler) {
  return std::make_unique<ScreenReader>(loop_, std::move(handler));
}

void DesktopSpeech::say(const std::string& text) { dispatcher_.say(text, texts_.language()); }

}  // namespace dormel::speech
