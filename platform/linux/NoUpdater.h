// The updater of a program that has nowhere to look for updates.
#pragma once

#include "platform/Updater.h"

namespace dormel {

class NoUpdater final : public Updater {
 public:
  [[nodiscard]] bool automaticallyChecksForUpdates() const override { return false; }
  void setAutomaticallyChecksForUpdates(bool /*on*/) override {}
  [[nodiscard]] bool automaticallyDownloadsUpdates() const override { return false; }
  void setAutomaticallyDownloadsUpdates(bool /*on*/) override {}
  [[nodiscard]] bool canCheckForUpdates() const override { return false; }
  [[nodiscard]] std::unique_ptr<Registration> observe(Task /*handler*/) override { return nullptr; }
  void checkForUpdates() override {}
  [[nodiscard]] std::string status() const override { return {}; }
};

}  // namespace dormel
