// An updater whose answers the world decides.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Updater.h"
#include "platform/sim/SimJournal.h"

namespace dormel {

class SimUpdater : public Updater {
 public:
  explicit SimUpdater(SimJournal& journal) : journal_(journal) {}

  [[nodiscard]] bool automaticallyChecksForUpdates() const override { return checks_; }
  void setAutomaticallyChecksForUpdates(bool on) override {
    journal_.note("automatic checks ", on ? "on" : "off");
    checks_ = on;
  }
  [[nodiscard]] bool automaticallyDownloadsUpdates() const override { return downloads_; }
  void setAutomaticallyDownloadsUpdates(bool on) override {
    journal_.note("automatic downloads ", on ? "on" : "off");
    downloads_ = on;
  }
  [[nodiscard]] bool canCheckForUpdates() const override { return canCheck_; }
  [[nodiscard]] std::unique_ptr<Registration> observe(Task handler) override {
    auto observer = std::make_shared<Task>(std::move(handler));
    observers_.push_back(observer);
    return std::make_unique<Observer>(std::move(observer));
  }
  void checkForUpdates() override { journal_.note("check for updates"); }
  bool installStagedUpdate() override {
    if (staged_) journal_.note("update put in place");
    return std::exchange(staged_, false);
  }
  void forget() override { journal_.note("updates forgotten"); }
  [[nodiscard]] std::string status() const override { return status_; }

  // The world's side.
  void setCanCheck(bool can) {
    canCheck_ = can;
    notify();
  }
  /// An update waits to be put in place.
  void setStaged(bool staged) { staged_ = staged; }
  void setStatus(std::string status) {
    status_ = std::move(status);
    notify();
  }
  /// The flags as a defaults store would hold them.
  void setFlags(bool checks, bool downloads) {
    checks_ = checks;
    downloads_ = downloads;
  }
  [[nodiscard]] std::size_t observers() const {
    return static_cast<std::size_t>(
        std::count_if(observers_.begin(), observers_.end(), [](const auto& observer) { return !observer.expired(); }));
  }

 private:
  struct Observer : Registration {
    explicit Observer(std::shared_ptr<Task> kept) : handler(std::move(kept)) {}
    std::shared_ptr<Task> handler;
  };
  void notify() {
    const auto observers = observers_;
    for (const auto& observer : observers) {
      if (const auto handler = observer.lock()) (*handler)();
    }
  }

  SimJournal& journal_;
  bool checks_ = true;
  bool downloads_ = true;
  bool canCheck_ = true;
  bool staged_ = false;
  std::string status_;
  std::vector<std::weak_ptr<Task>> observers_;
};

}  // namespace dormel
