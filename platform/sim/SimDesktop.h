// The rest of a simulated desktop: the permission, the application as the desktop sees it, the bundle.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "platform/Accessibility.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/Process.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimAccessibility : public Accessibility {
 public:
  [[nodiscard]] bool isProcessTrusted() const override { return trusted_; }

  // The world's side.
  void setTrusted(bool trusted) { trusted_ = trusted; }

 private:
  bool trusted_ = true;
};

class SimApplication : public Application {
 public:
  SimApplication(SimTimeline& timeline, SimJournal& journal, Process& process)
      : timeline_(timeline), journal_(journal), process_(process) {}

  void setActivationPolicy(ActivationPolicy policy) override {
    journal_.note("activation policy ", policy == ActivationPolicy::regular ? "regular" : "accessory");
  }
  /// The delegate hears of it in a turn of its own, as it does when the user comes back.
  void activateIgnoringOthers() override {
    journal_.note("application activated");
    comeBack();
  }
  void setPresentationOptions(std::uint32_t options) override {
    journal_.note("presentation ", options);
    options_ = options;
    if (onOptions_) onOptions_(options != 0);
  }
  [[nodiscard]] std::uint32_t presentationOptions() const override { return options_; }
  void terminate() override {
    if (delegate_ != nullptr && !delegate_->shouldTerminate()) return;
    if (delegate_ != nullptr) delegate_->willTerminate();
    process_.exit(0);
  }

  /// Told whether any are in force now.
  void setOnOptions(std::function<void(bool)> onOptions) { onOptions_ = std::move(onOptions); }
  /// Not owned; null for none.
  void setDelegate(ApplicationDelegate* delegate) { delegate_ = delegate; }

  // The user's side.
  /// The user turns to another application, and back to this one.
  void leave() { isActive_ = false; }
  void comeBack() {
    if (std::exchange(isActive_, true)) return;
    timeline_.addMain(0, 0, [this] {
      if (delegate_ != nullptr) delegate_->didBecomeActive();
    });
  }

  /// The options stand until somebody takes them back: a desktop does not know that their owner died.
  void processEnded() {
    delegate_ = nullptr;
    isActive_ = false;
  }

 private:
  SimTimeline& timeline_;
  SimJournal& journal_;
  Process& process_;
  ApplicationDelegate* delegate_ = nullptr;
  std::function<void(bool)> onOptions_;
  bool isActive_ = false;
  std::uint32_t options_ = 0;
};

class SimBundle : public Bundle {
 public:
  [[nodiscard]] std::string path() const override { return path_; }
  [[nodiscard]] std::optional<std::string> executablePath() const override {
    return path_.ends_with(".app") ? std::optional(path_ + "/Contents/Linux/Dormel") : std::nullopt;
  }
  [[nodiscard]] std::optional<std::string> info(const std::string& key) const override {
    const auto found = info_.find(key);
    return found == info_.end() ? std::nullopt : std::optional(found->second);
  }

  [[nodiscard]] std::optional<std::string> packageRemoval() const override { return packageRemoval_; }

  void setPath(std::string path) { path_ = std::move(path); }
  void setPackageRemoval(std::string command) { packageRemoval_ = std::move(command); }
  void setInfo(const std::string& key, std::string value) { info_[key] = std::move(value); }

 private:
  std::string path_ = "/Applications/Dormel.app";
  std::map<std::string, std::string> info_{{"CFBundleShortVersionString", "1.0"}, {"CFBundleVersion", "1"}};
  std::optional<std::string> packageRemoval_;
};

}  // namespace dormel
