#include "platform/sim/SimAlerts.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace dormel {
namespace {

const char* nameOf(AlertStyle style) {
  switch (style) {
    case AlertStyle::informational:
      return "informational";
    case AlertStyle::warning:
      return "warning";
    case AlertStyle::critical:
      return "critical";
  }
  return "";
}

/// Everything the user reads, on one line.
std::string shownText(const Alert& alert) {
  std::string text = alert.message + " / " + alert.informativeText + " /";
  for (const std::string& button : alert.buttons) text += " [" + button + "]";
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) text.replace(at, 1, "\\n");
  return text;
}

}  // namespace

/// What the process holds; the alert goes with it.
class SimAlerts::Handle : public ShownAlert {
 public:
  Handle(SimAlerts& alerts, std::shared_ptr<Open> open) : alerts_(alerts), open_(std::move(open)) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() override {
    const auto dropped = std::exchange(open_->onAnswer, nullptr);
    alerts_.takeOff(open_);
  }

 private:
  SimAlerts& alerts_;
  std::shared_ptr<Open> open_;
};

std::unique_ptr<ShownAlert> SimAlerts::show(const Alert& alert, std::function<void(int)> onAnswer) {
  journal_.note("alert, ", nameOf(alert.style), ": ", shownText(alert));
  open_.push_back(std::make_shared<Open>(Open{alert, std::move(onAnswer)}));
  return std::make_unique<Handle>(*this, open_.back());
}

std::vector<Alert> SimAlerts::shown() const {
  std::vector<Alert> alerts;
  for (const auto& open : open_) {
    if (!open->isAnswered) alerts.push_back(open->alert);
  }
  return alerts;
}

void SimAlerts::answer(const std::string& button) {
  const auto newest = std::find_if(open_.rbegin(), open_.rend(), [](const auto& open) { return !open->isAnswered; });
  if (newest == open_.rend()) throw std::logic_error("no alert on screen");
  const std::shared_ptr<Open> pressed = *newest;
  const auto& buttons = pressed->alert.buttons;
  const auto found = std::find(buttons.begin(), buttons.end(), button);
  if (found == buttons.end()) throw std::logic_error("no button " + button + " on: " + pressed->alert.message);
  pressed->isAnswered = true;
  journal_.note("alert answered: ", button);
  timeline_.addMain(0, 0, [this, pressed, index = static_cast<int>(found - buttons.begin())] {
    std::erase(open_, pressed);
    if (const auto onAnswer = std::exchange(pressed->onAnswer, nullptr)) onAnswer(index);
  });
}

void SimAlerts::processEnded() {
  // What is called back may hold the alert it belongs to.
  for (const auto& open : std::exchange(open_, {})) const auto dropped = std::exchange(open->onAnswer, nullptr);
}

void SimAlerts::takeOff(const std::shared_ptr<Open>& open) {
  if (std::erase(open_, open) != 0 && !open->isAnswered) journal_.note("alert taken off: ", open->alert.message);
}

}  // namespace dormel
