// An updater whose answers the world decides.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/Updater.h"
#include "platform/common/HandlerList.h"
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
  [[nodiscard]] bool hasFeed() const override { return hasFeed_; }
  [[nodiscard]] bool canCheckForUpdates() const override { return canCheck_ && hasFeed_; }
  [[nodiscard]] std::unique_ptr<Registration> observe(Task handler) override {
    return observers_.add(std::move(handler));
  }
  void checkForUpdates() override { journal_.note("check for updates"); }
  bool installStagedUpdate() override {
    if (staged_) journal_.note("update put in place");
    return std::exchange(staged_, false);
  }
  void forget() override { journal_.note("updates forgotten"); }
  [[nodiscard]] std::string status() const override { return status_; }

  // The world's side.
  void setHasFeed(bool has) { hasFeed_ = has; }
  void setCanCheck(bool can) {
    canCheck_ = can;
    observers_.call();
  }
  /// An update waits to be put in place.
  void setStaged(bool staged) { staged_ = staged; }
  void setStatus(std::string status) {
    status_ = std::move(status);
    observers_.call();
  }
  /// The flags as a defaults store would hold them.
  void setFlags(bool checks, bool downloads) {
    checks_ = checks;
    downloads_ = downloads;
  }
  [[nodiscard]] std::size_t observers() const { return observers_.size(); }

 private:
  SimJournal& journal_;
  bool checks_ = true;
  bool downloads_ = true;
  bool canCheck_ = true;
  bool hasFeed_ = true;
  bool staged_ = false;
  std::string status_;
  HandlerList<> observers_;
};

}  // namespace dormel
