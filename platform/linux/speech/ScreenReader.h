// Whether a screen reader is on, as the session's accessibility bus has it (org.a11y.Status). Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "platform/Registration.h"
#include "platform/linux/freedesktop/Bus.h"

namespace dormel::speech {

class ScreenReader final : public Registration {
 public:
  /// Calls `handler` from the loop with the answer, and with every change. Never, where nobody answers: the service is
  /// not started for this. `loop` outlives this.
  ScreenReader(EventLoop& loop, std::function<void(bool isOn)> handler);

 private:
  void ask();

  std::function<void(bool isOn)> handler_;
  std::unique_ptr<freedesktop::Bus> bus_;
};

}  // namespace dormel::speech
