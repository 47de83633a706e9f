// Alerts of a simulated desktop: what is asked stands there until a test, as the user, presses a button.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Alerts.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimAlerts : public Alerts {
 public:
  SimAlerts(SimTimeline& timeline, SimJournal& journal) : timeline_(timeline), journal_(journal) {}

  [[nodiscard]] std::unique_ptr<ShownAlert> show(const Alert& alert, std::function<void(int)> onAnswer) override;

  // The user's side.
  /// The alerts on screen, the newest last.
  [[nodiscard]] std::vector<Alert> shown() const;
  /// Presses the button with that title on the newest alert; the answer is delivered in a turn of the main thread.
  /// Throws when there is no alert, or no such button on it.
  void answer(const std::string& button);

  void processEnded();

 private:
  struct Open {
    Alert alert;
    std::function<void(int)> onAnswer;
    bool isAnswered = false;
  };
  class Handle;

  void takeOff(const std::shared_ptr<Open>& open);

  SimTimeline& timeline_;
  SimJournal& journal_;
  std::vector<std::shared_ptr<Open>> open_;  // answered ones until their answer is delivered
};

}  // namespace dormel
