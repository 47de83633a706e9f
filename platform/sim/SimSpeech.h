// A screen reader that is switched on and off, and a voice whose words go into the journal.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/Speech.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimSpeech : public Speech {
 public:
  SimSpeech(SimTimeline& timeline, SimJournal& journal) : timeline_(timeline), journal_(journal) {}

  [[nodiscard]] std::unique_ptr<Registration> followReader(std::function<void(bool isOn)> handler) override {
    auto following = std::make_unique<Following>();
    following->handler = std::make_shared<std::function<void(bool)>>(std::move(handler));
    handler_ = following->handler;
    if (isReaderOn_) tell();
    return following;
  }
  void say(const std::string& text) override { journal_.note("says: ", text); }

  // The user's side.
  void setReaderOn(bool on) {
    if (std::exchange(isReaderOn_, on) != on) tell();
  }

 private:
  struct Following : Registration {
    std::shared_ptr<std::function<void(bool)>> handler;
  };

  void tell() {
    timeline_.addMain(0, 0, [this, weak = handler_] {
      if (const auto handler = weak.lock()) (*handler)(isReaderOn_);
    });
  }

  SimTimeline& timeline_;
  SimJournal& journal_;
  std::weak_ptr<std::function<void(bool)>> handler_;
  bool isReaderOn_ = false;
};

}  // namespace dormel
